#include "vst3/CPlugFrame.h"

#include "AAX_IViewContainer.h"
#include "logger/CLog.h"

using namespace Steinberg;

tresult PLUGIN_API CPlugFrame::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, IPlugFrame::iid)) {
        addRef();
        *obj = static_cast<IPlugFrame*>(this);
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}

uint32 PLUGIN_API CPlugFrame::addRef() { return static_cast<uint32>(++mRefCount); }

uint32 PLUGIN_API CPlugFrame::release()
{
    const int32 count = --mRefCount;
    if (count == 0)
        delete this;
    return static_cast<uint32>(count);
}

tresult PLUGIN_API CPlugFrame::resizeView(IPlugView* /*view*/, ViewRect* newSize)
{
    if (!newSize)
        return kInvalidArgument;
    const int32 width = newSize->right - newSize->left;
    const int32 height = newSize->bottom - newSize->top;
    MV_LOG("gui", kLogInfo, "Plugin ask to resize width=", width, " height=", height);
    if (mContainer) {
        AAX_Point size(static_cast<float>(height), static_cast<float>(width));
        mContainer->SetViewSize(size);
    }
    // The plug-in resizes its own view; only the AAX window follows.
    return kResultOk;
}
