// The contract's checked entries: thread scope, failure guard, then the
// format's implementation.
#include "fakehost/IFakeHost.h"

#include <exception>
#include <utility>

#include "ThreadRole.h"
#include "logger/CLog.h"

namespace {
// Debug log configurations turn failed assertions into exceptions; outside
// the real-time callback they end here as one error line and the neutral
// answer.
template <typename Result, typename Call>
Result Guarded(const char* operation, Result neutral, Call&& call)
{
    try {
        return call();
    } catch (const std::exception& e) {
        MV_LOG("fakehost", kLogError, "Exception in ", operation, " - ", e.what());
    }
    return neutral;
}

template <typename Call>
void Guarded(const char* operation, Call&& call)
{
    try {
        call();
    } catch (const std::exception& e) {
        MV_LOG("fakehost", kLogError, "Exception in ", operation, " - ", e.what());
    }
}
}  // namespace

#define MV_CONTRACT(name) MV_MAIN_THREAD("IFakeHost::" name)

bool IFakeHost::Init()
{
    MV_CONTRACT("Init");
    return Guarded("Init", false, [&] { return DoInit(); });
}

void IFakeHost::Setup()
{
    MV_CONTRACT("Setup");
    Guarded("Setup", [&] { DoSetup(); });
}

void IFakeHost::Quit()
{
    MV_CONTRACT("Quit");
    Guarded("Quit", [&] { DoQuit(); });
}

std::string IFakeHost::GetLoadError() const
{
    MV_CONTRACT("GetLoadError");
    return Guarded("GetLoadError", std::string(), [&] { return DoGetLoadError(); });
}

std::string IFakeHost::GetPluginVendor()
{
    MV_CONTRACT("GetPluginVendor");
    return Guarded("GetPluginVendor", std::string(), [&] { return DoGetPluginVendor(); });
}

std::string IFakeHost::GetPluginVersion()
{
    MV_CONTRACT("GetPluginVersion");
    return Guarded("GetPluginVersion", std::string(), [&] { return DoGetPluginVersion(); });
}

int32_t IFakeHost::GetPluginProductUniqueID()
{
    MV_CONTRACT("GetPluginProductUniqueID");
    return Guarded("GetPluginProductUniqueID", int32_t{-1}, [&] { return DoGetPluginProductUniqueID(); });
}

int IFakeHost::GetParameterCount()
{
    MV_CONTRACT("GetParameterCount");
    return Guarded("GetParameterCount", -1, [&] { return DoGetParameterCount(); });
}

SParameterInfo IFakeHost::GetParameterInfo(int index)
{
    MV_CONTRACT("GetParameterInfo");
    return Guarded("GetParameterInfo", SParameterInfo(), [&] { return DoGetParameterInfo(index); });
}

std::optional<double> IFakeHost::GetParameterValue(int index)
{
    MV_CONTRACT("GetParameterValue");
    return Guarded("GetParameterValue", std::optional<double>(), [&] { return DoGetParameterValue(index); });
}

std::optional<std::string> IFakeHost::GetParameterText(int index, double value)
{
    MV_CONTRACT("GetParameterText");
    return Guarded("GetParameterText", std::optional<std::string>(), [&] { return DoGetParameterText(index, value); });
}

std::optional<double> IFakeHost::GetParameterValueFromText(int index, const std::string& text)
{
    MV_CONTRACT("GetParameterValueFromText");
    return Guarded("GetParameterValueFromText", std::optional<double>(),
                   [&] { return DoGetParameterValueFromText(index, text); });
}

void IFakeHost::AddInputChangeForProcessing(int index, double value)
{
    MV_CONTRACT("AddInputChangeForProcessing");
    Guarded("AddInputChangeForProcessing", [&] { DoAddInputChangeForProcessing(index, value); });
}

void IFakeHost::AddInputChangeForGUI(int index, double value)
{
    MV_CONTRACT("AddInputChangeForGUI");
    Guarded("AddInputChangeForGUI", [&] { DoAddInputChangeForGUI(index, value); });
}

SPluginState IFakeHost::GetState()
{
    MV_CONTRACT("GetState");
    return Guarded("GetState", SPluginState(), [&] { return DoGetState(); });
}

bool IFakeHost::SetState(const void* data, uint32_t size)
{
    MV_CONTRACT("SetState");
    return Guarded("SetState", false, [&] { return DoSetState(data, size); });
}

bool IFakeHost::StateHoldsParameterValues()
{
    MV_CONTRACT("StateHoldsParameterValues");
    return Guarded("StateHoldsParameterValues", true, [&] { return DoStateHoldsParameterValues(); });
}

void IFakeHost::QuitGUI()
{
    MV_CONTRACT("QuitGUI");
    Guarded("QuitGUI", [&] { DoQuitGUI(); });
}

void IFakeHost::CreateGUI(AAX_IViewContainer* container)
{
    MV_CONTRACT("CreateGUI");
    Guarded("CreateGUI", [&] { DoCreateGUI(container); });
}

SViewSize IFakeHost::GetViewSize()
{
    MV_CONTRACT("GetViewSize");
    return Guarded("GetViewSize", SViewSize(), [&] { return DoGetViewSize(); });
}

int32_t IFakeHost::TimerWakeup()
{
    MV_CONTRACT("TimerWakeup");
    return Guarded("TimerWakeup", int32_t{0}, [&] { return DoTimerWakeup(); });
}

void IFakeHost::ApplyPendingSettings()
{
    MV_CONTRACT("ApplyPendingSettings");
    Guarded("ApplyPendingSettings", [&] { DoApplyPendingSettings(); });
}

void IFakeHost::SetOffline(bool offline)
{
    MV_CONTRACT("SetOffline");
    // CLASSIC never told a plug-in how it was rendered.
    if (!IsStandard())
        return;
    Guarded("SetOffline", [&] { DoSetOffline(offline); });
}

int32_t IFakeHost::GetLatency()
{
    MV_CONTRACT("GetLatency");
    // CLASSIC never told its host of a latency.
    if (!IsStandard())
        return 0;
    return Guarded("GetLatency", int32_t{0}, [&] { return DoGetLatency(); });
}

SPluginTail IFakeHost::GetTail()
{
    MV_CONTRACT("GetTail");
    if (!IsStandard())
        return SPluginTail();
    return Guarded("GetTail", SPluginTail(), [&] { return DoGetTail(); });
}

std::vector<SOutputRoute> IFakeHost::GetOutputRoutes()
{
    MV_CONTRACT("GetOutputRoutes");
    return Guarded("GetOutputRoutes", std::vector<SOutputRoute>(), [&] { return DoGetOutputRoutes(); });
}
