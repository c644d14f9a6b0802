// The plug-in's state as one flat block: the component state, then the
// controller state, each behind a native-endian 32-bit length.
#include "vst3/CFakeHostVST3.h"

#include <climits>
#include <cstdint>
#include <cstring>

#include "logger/CLog.h"
#include "public.sdk/source/common/memorystream.h"
#include "vst3/CVST3Loader.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
// Saved on top of the two states (zeros), as this host always has.
constexpr unsigned int kStateSizeSlack = 60;
constexpr size_t kLengthFieldSize = sizeof(uint32_t);

uint32_t streamSize(MemoryStream& stream)
{
    const TSize size = stream.getSize();
    return size > 0 ? static_cast<uint32_t>(size) : 0u;
}
}  // namespace

SPluginState CFakeHostVST3::DoGetState()
{
    MV_LOG("fakehost", kLogDebug, "GetState");
    SPluginState state;
    IComponent* component = mVst3Loader ? mVst3Loader->getComponent() : nullptr;
    IEditController* controller = mVst3Loader ? mVst3Loader->getController() : nullptr;
    if (!component || !controller) {
        // Saved anyway, as a block of the size this host always reported.
        state.bytes.assign(kStateSizeSlack, 0);
        return state;
    }

    MemoryStream componentStream;
    MemoryStream controllerStream;
    {
        auto lock = mVst3Loader->lockControllerAccess();
        component->getState(&componentStream);
        controller->getState(&controllerStream);
    }
    const uint32_t componentSize = streamSize(componentStream);
    const uint32_t controllerSize = streamSize(controllerStream);
    const uint64_t needed = uint64_t{componentSize} + controllerSize + kStateSizeSlack;
    // AAX chunk sizes are 32-bit signed; a larger state cannot be saved.
    if (needed > INT32_MAX) {
        MV_LOG("fakehost", kLogError, "GetState: a state of ", needed, " bytes is too large to save");
        state.bytes.assign(kStateSizeSlack, 0);
        return state;
    }
    state.bytes.assign(static_cast<size_t>(needed), 0);
    char* out = state.bytes.data();
    std::memcpy(out, &componentSize, kLengthFieldSize);
    if (componentSize)
        std::memcpy(out + kLengthFieldSize, componentStream.getData(), componentSize);
    std::memcpy(out + kLengthFieldSize + componentSize, &controllerSize, kLengthFieldSize);
    if (controllerSize)
        std::memcpy(out + 2 * kLengthFieldSize + componentSize, controllerStream.getData(), controllerSize);
    state.gave = true;
    MV_LOG("fakehost", kLogDebug, "GetState ", "controller_size ", controllerSize, " component_size ", componentSize);
    return state;
}

bool CFakeHostVST3::DoSetState(const void* inpData, uint32_t inSize)
{
    MV_LOG("fakehost", kLogDebug, "SetState ", "inSize ", inSize, " inpData ", inpData);
    IComponent* component = mVst3Loader ? mVst3Loader->getComponent() : nullptr;
    IEditController* controller = mVst3Loader ? mVst3Loader->getController() : nullptr;
    if (!component || !controller)
        return false;

    // The block comes from disk: every length must stay inside inSize.
    const auto* in = static_cast<const unsigned char*>(inpData);
    const uint64_t size = inSize;
    uint32_t componentSize = 0;
    uint32_t controllerSize = 0;
    if (!in || size < kLengthFieldSize) {
        MV_LOG("fakehost", kLogError, "SetState refused: block too short for its header, inSize ", inSize);
        return false;
    }
    std::memcpy(&componentSize, in, kLengthFieldSize);
    const uint64_t controllerField = kLengthFieldSize + uint64_t{componentSize};
    if (controllerField + kLengthFieldSize > size) {
        MV_LOG("fakehost", kLogError, "SetState refused: component_size ", componentSize, " past inSize ", inSize);
        return false;
    }
    std::memcpy(&controllerSize, in + controllerField, kLengthFieldSize);
    if (controllerField + kLengthFieldSize + controllerSize > size) {
        MV_LOG("fakehost", kLogError, "SetState refused: controller_size ", controllerSize, " past inSize ", inSize);
        return false;
    }

    // Streams take 32-bit signed lengths.
    if (componentSize > INT32_MAX || controllerSize > INT32_MAX) {
        MV_LOG("fakehost", kLogError, "SetState refused: state too large");
        return false;
    }

    auto lock = mVst3Loader->lockControllerAccess();
    if (IsStandard())
        mVst3Loader->dropPendingChanges();
    MemoryStream componentStream;
    componentStream.setSize(componentSize);
    if (componentSize)
        componentStream.write(const_cast<unsigned char*>(in + kLengthFieldSize), static_cast<int32>(componentSize), nullptr);
    componentStream.seek(0, IBStream::kIBSeekSet, nullptr);
    component->setState(&componentStream);
    componentStream.seek(0, IBStream::kIBSeekSet, nullptr);
    controller->setComponentState(&componentStream);

    MemoryStream controllerStream;
    controllerStream.setSize(controllerSize);
    if (controllerSize)
        controllerStream.write(const_cast<unsigned char*>(in + controllerField + kLengthFieldSize),
                               static_cast<int32>(controllerSize), nullptr);
    controllerStream.seek(0, IBStream::kIBSeekSet, nullptr);
    controller->setState(&controllerStream);
    MV_LOG("fakehost", kLogDebug, "SetState ", "component_size ", componentSize, " controller_size ", controllerSize);
    return true;
}
