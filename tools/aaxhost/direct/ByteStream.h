// The stream a host hands to getState/setState: bytes in memory, read and
// written at a position. Lives on the host's stack; not reference counted.
#pragma once

#include <vector>

#include "pluginterfaces/base/ibstream.h"

namespace AAXDirect {

class CByteStream final : public Steinberg::IBStream {
public:
    CByteStream() = default;
    explicit CByteStream(std::vector<char> bytes) : mBytes(std::move(bytes)) {}
    const std::vector<char>& Bytes() const { return mBytes; }
    void Rewind() { mPosition = 0; }

    Steinberg::tresult PLUGIN_API read(void* buffer, Steinberg::int32 numBytes, Steinberg::int32* numBytesRead) override;
    Steinberg::tresult PLUGIN_API write(void* buffer, Steinberg::int32 numBytes,
                                        Steinberg::int32* numBytesWritten) override;
    Steinberg::tresult PLUGIN_API seek(Steinberg::int64 pos, Steinberg::int32 mode, Steinberg::int64* result) override;
    Steinberg::tresult PLUGIN_API tell(Steinberg::int64* pos) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    std::vector<char> mBytes;
    Steinberg::int64 mPosition = 0;
};

}  // namespace AAXDirect
