#include "ByteStream.h"

#include <algorithm>
#include <cstring>

using namespace Steinberg;

namespace AAXDirect {

tresult PLUGIN_API CByteStream::read(void* buffer, int32 numBytes, int32* numBytesRead)
{
    if (numBytes < 0 || (buffer == nullptr && numBytes > 0))
        return kInvalidArgument;
    const int64 left = std::max<int64>(0, static_cast<int64>(mBytes.size()) - mPosition);
    const int32 n = static_cast<int32>(std::min<int64>(numBytes, left));
    if (n > 0)
        std::memcpy(buffer, mBytes.data() + mPosition, static_cast<size_t>(n));
    mPosition += n;
    if (numBytesRead != nullptr)
        *numBytesRead = n;
    return kResultOk;
}

tresult PLUGIN_API CByteStream::write(void* buffer, int32 numBytes, int32* numBytesWritten)
{
    if (numBytes < 0 || (buffer == nullptr && numBytes > 0))
        return kInvalidArgument;
    const size_t end = static_cast<size_t>(mPosition) + static_cast<size_t>(numBytes);
    if (end > mBytes.size())
        mBytes.resize(end);
    if (numBytes > 0)
        std::memcpy(mBytes.data() + mPosition, buffer, static_cast<size_t>(numBytes));
    mPosition += numBytes;
    if (numBytesWritten != nullptr)
        *numBytesWritten = numBytes;
    return kResultOk;
}

tresult PLUGIN_API CByteStream::seek(int64 pos, int32 mode, int64* result)
{
    int64 base = 0;
    if (mode == kIBSeekCur)
        base = mPosition;
    else if (mode == kIBSeekEnd)
        base = static_cast<int64>(mBytes.size());
    else if (mode != kIBSeekSet)
        return kInvalidArgument;
    if (base + pos < 0)
        return kInvalidArgument;
    mPosition = base + pos;
    if (result != nullptr)
        *result = mPosition;
    return kResultOk;
}

tresult PLUGIN_API CByteStream::tell(int64* pos)
{
    if (pos == nullptr)
        return kInvalidArgument;
    *pos = mPosition;
    return kResultOk;
}

tresult PLUGIN_API CByteStream::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, IBStream::iid) || FUnknownPrivate::iidEqual(iid, FUnknown::iid)) {
        *obj = this;
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}

}  // namespace AAXDirect
