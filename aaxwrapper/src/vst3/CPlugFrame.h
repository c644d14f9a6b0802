// The frame through which a VST 3 editor asks its host for a new size; the
// request is passed on to the AAX view container.
#pragma once

#include <atomic>

#include "pluginterfaces/gui/iplugview.h"

class AAX_IViewContainer;

class CPlugFrame : public Steinberg::IPlugFrame {
public:
    explicit CPlugFrame(AAX_IViewContainer* container) : mContainer(container) {}

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override;
    Steinberg::uint32 PLUGIN_API release() override;
    Steinberg::tresult PLUGIN_API resizeView(Steinberg::IPlugView* view, Steinberg::ViewRect* newSize) override;

    virtual ~CPlugFrame() = default;

private:
    std::atomic<Steinberg::int32> mRefCount{1};
    AAX_IViewContainer* mContainer;
};
