#include "vst3/hosting/ParameterChanges.h"

namespace Morvane {
namespace vst3 {

using namespace Steinberg;

ParameterValueQueue::ParameterValueQueue(int32 maxPoints)
    : mPoints(maxPoints > 0 ? static_cast<size_t>(maxPoints) : 1u)
{
}

tresult PLUGIN_API ParameterValueQueue::getPoint(int32 index, int32& sampleOffset, Vst::ParamValue& value)
{
    if (index < 0 || index >= mCount)
        return kInvalidArgument;
    sampleOffset = mPoints[static_cast<size_t>(index)].offset;
    value = mPoints[static_cast<size_t>(index)].value;
    return kResultOk;
}

tresult PLUGIN_API ParameterValueQueue::addPoint(int32 sampleOffset, Vst::ParamValue value, int32& index)
{
    int32 pos = mCount;
    while (pos > 0 && mPoints[static_cast<size_t>(pos - 1)].offset > sampleOffset)
        --pos;
    if (pos > 0 && mPoints[static_cast<size_t>(pos - 1)].offset == sampleOffset) {
        mPoints[static_cast<size_t>(pos - 1)].value = value;
        index = pos - 1;
        return kResultOk;
    }
    if (mCount >= static_cast<int32>(mPoints.size()))
        return kResultFalse;
    for (int32 i = mCount; i > pos; --i)
        mPoints[static_cast<size_t>(i)] = mPoints[static_cast<size_t>(i - 1)];
    mPoints[static_cast<size_t>(pos)] = Point{sampleOffset, value};
    ++mCount;
    index = pos;
    return kResultOk;
}

tresult PLUGIN_API ParameterValueQueue::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, Vst::IParamValueQueue::iid)) {
        *obj = static_cast<Vst::IParamValueQueue*>(this);
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}

ParameterChanges::ParameterChanges(int32 maxParameters) { setMaxParameters(maxParameters); }

void ParameterChanges::setMaxParameters(int32 maxParameters)
{
    mQueues.clear();
    mUsed = 0;
    for (int32 i = 0; i < maxParameters; ++i)
        mQueues.push_back(std::make_unique<ParameterValueQueue>());
}

Vst::IParamValueQueue* PLUGIN_API ParameterChanges::getParameterData(int32 index)
{
    if (index < 0 || index >= mUsed)
        return nullptr;
    return mQueues[static_cast<size_t>(index)].get();
}

Vst::IParamValueQueue* PLUGIN_API ParameterChanges::addParameterData(const Vst::ParamID& id, int32& index)
{
    for (int32 i = 0; i < mUsed; ++i) {
        if (mQueues[static_cast<size_t>(i)]->getParameterId() == id) {
            index = i;
            return mQueues[static_cast<size_t>(i)].get();
        }
    }
    if (mUsed >= static_cast<int32>(mQueues.size()))
        return nullptr;
    ParameterValueQueue* queue = mQueues[static_cast<size_t>(mUsed)].get();
    queue->reset(id);
    index = mUsed++;
    return queue;
}

tresult PLUGIN_API ParameterChanges::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, Vst::IParameterChanges::iid)) {
        *obj = static_cast<Vst::IParameterChanges*>(this);
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}

}  // namespace vst3
}  // namespace Morvane
