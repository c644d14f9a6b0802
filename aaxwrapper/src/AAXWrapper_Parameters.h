// The AAX data model of the effect: owns the fake host that runs the wrapped
// VST plug-in, mirrors its parameters, carries its state in a chunk of our
// own and hands itself to the real-time callback.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "AAXWrapper_BypassDelay.h"
#include "AAX_CEffectParameters.h"
#include "ProcessGate.h"
#include "fakehost/IFakeHost.h"
#include "fakehost/IPluginEditListener.h"

class AAXWrapper_Parameters : public AAX_CEffectParameters, private IPluginEditListener {
public:
    // Returned as the interface type because the host calls the registered
    // factory as AAX_IEffectParameters*(*)().
    static AAX_IEffectParameters* Create();

    AAXWrapper_Parameters();
    ~AAXWrapper_Parameters() override;

    AAX_Result EffectInit() override;
    AAX_Result ResetFieldData(AAX_CFieldIndex inFieldIndex, void* oData, uint32_t inDataSize) const override;
    AAX_Result UpdateParameterNormalizedValue(AAX_CParamID iParameterID, double iValue,
                                              AAX_EUpdateSource iSource) override;

    // State chunks: the base's chunks, then ours.
    AAX_Result GetNumberOfChunks(int32_t* oNumChunks) const override;
    AAX_Result GetChunkIDFromIndex(int32_t iIndex, AAX_CTypeID* oChunkID) const override;
    AAX_Result GetChunkSize(AAX_CTypeID iChunkID, uint32_t* oSize) const override;
    AAX_Result GetChunk(AAX_CTypeID iChunkID, AAX_SPlugInChunk* oChunk) const override;
    AAX_Result SetChunk(AAX_CTypeID iChunkID, const AAX_SPlugInChunk* iChunk) override;

    // Main thread, periodic: lets the fake host apply what processing saw.
    AAX_Result TimerWakeup() override;
    AAX_Result NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData,
                                    uint32_t inNotificationDataSize) override;
    // kWrapperStatusBlockID: whether the wrapped plug-in runs, and why not.
    AAX_Result GetCustomData(AAX_CTypeID iDataBlockID, uint32_t inDataSize, void* oData,
                             uint32_t* oDataWritten) const override;
    std::string StatusText() const;
    // kWrapperParameterNotesBlockID: each published parameter's unit and group.
    std::string ParameterNotesText() const;

    // Read by the real-time callback and the view.
    IFakeHost* GetFakeHost() const { return mFakeHost.get(); }
    // How the master bypass is played, read once per buffer by the callback:
    // a copy of the input; (STANDARD, with latency) a delay line, used inside
    // the gate only and replaced with it closed; or the plug-in's own bypass
    // parameter, driven by the master bypass, in which case the callback
    // hands it bypassed buffers too (set before processing starts, never
    // changed after).
    enum class EBypassWay : uint8_t { kCopy, kDelayedCopy, kPluginBypasses };
    EBypassWay BypassWay() const { return mBypassWay.load(std::memory_order_relaxed); }
    bool BypassesItself() const { return BypassWay() == EBypassWay::kPluginBypasses; }
    bool IsLoadingState() const { return mIsLoadingState.load(std::memory_order_relaxed); }
    // Entered by the real-time callback around Process; a state restore
    // closes it, so that it never runs beside a process call.
    Morvane::CProcessGate& ProcessGate() const { return mProcessGate; }
    CBypassDelay* BypassDelay() const { return mBypassDelay.get(); }

    // Test seam: when set, the constructor asks this function for the fake
    // host instead of choosing one by extension (path is what the file search
    // found). Tests only; never set in a shipped bundle.
    using FakeHostFactory = IFakeHost* (*)(AAX_CEffectParameters& owner, std::string& path);
    static void SetFakeHostFactoryForTesting(FakeHostFactory factory);

private:
    void LogBundleInfo() const;
    void CreateFakeHost(std::string& path);
    void InitFakeHost();
    void LogPluginInfo();
    void LogWherePluginWasFound(const std::string& path) const;
    void PublishPluginParameters();
    std::vector<int> PublishingOrder(const std::vector<SParameterInfo>& infos) const;
    void AdoptPluginBypass(int index, const SParameterInfo& info);
    void ForwardMasterBypass(double value);
    void ReadPluginBypass();
    bool IsPluginBypass(uint32_t tag) const;
    // Both give the value the AAX parameter is to hold after the change.
    double ForwardParameterChange(AAX_CParamID iParameterID, double iValue);
    double ForwardChangeOnce(AAX_CParamID iParameterID, double iValue);
    void OnPluginBeginEdit(uint32_t tag) override;
    void OnPluginEndEdit(uint32_t tag) override;
    void OnPluginEdit(uint32_t tag, double value) override;
    void OnPluginValueMoved(uint32_t tag, double value) override;
    // CLASSIC: what a host change is compared with (the plug-in's default).
    double ClassicDefault(int index);
    void ReadParametersFromPlugin();
    // Main thread: the plug-in's whole state, taken at one moment.
    void TakeStateSnapshot() const;
    // STANDARD, main thread: after host changes, the values of every
    // parameter, since setting one may move others (linked controls).
    void SyncHeldValues();
    double HeldOnStep(int index, double value) const;
    bool IsStandard() const;
    // Main thread: the plug-in's latency to the host, and the bypass's delay
    // line to match, when it changed.
    void ReportLatency();
    // STANDARD: logs the plug-in's tail when it first says it or changes it.
    void ReportTail();
    // "<samples>", "infinite", or empty when the plug-in does not say.
    static std::string TailText(const SPluginTail& tail);

    std::unique_ptr<IFakeHost> mFakeHost;
    std::string mPluginPath;   // what the file search found; empty when nothing
    std::string mLoadError;    // why the plug-in is not running; empty when it is
    std::string mPluginVendor;   // as the plug-in reports them, once loaded
    std::string mPluginVersion;
    // STANDARD: AAX identifiers are the plug-in's parameter tags; the last
    // value sent to or received from each parameter, by index (NaN: none
    // yet). Atomic because VST 2 plug-ins may report edits from the audio
    // thread.
    std::unordered_map<uint32_t, int> mIndexByTag;
    std::unique_ptr<std::atomic<double>[]> mLastValues;
    size_t mLastValueCount = 0;
    // CLASSIC, by index: the default published (kReadDefaultAgain where the
    // format has none) and the name, for its log line.
    static constexpr double kReadDefaultAgain = -2.0;
    std::vector<double> mClassicDefaults;
    std::vector<std::string> mClassicNames;
    // STANDARD, by index: steps of a discrete parameter (0: continuous), and
    // whether only the plug-in sets it.
    std::vector<int32_t> mSteps;
    std::vector<bool> mReadOnly;
    // Every published parameter: its index and AAX identifier.
    std::vector<std::pair<int, std::string>> mPublished;
    // A deliberate addition to the loading flag: the flag alone let a
    // process call that began before it run on inside the plug-in while its
    // state was being restored.
    mutable Morvane::CProcessGate mProcessGate;
    // Set while a chunk is being restored; the callback outputs silence then.
    // Atomic only so the cross-thread read is well defined; no ordering needed.
    std::atomic<bool> mIsLoadingState{false};
    // The state GetChunkSize measured, handed out by the next GetChunk.
    mutable std::vector<char> mStateSnapshot;
    mutable bool mSnapshotTaken = false;
    // A host change reached the plug-in since the values were last read back.
    std::atomic<bool> mHeldValuesStale{false};
    // STANDARD: the plug-in's own bypass parameter (index -1: none) and its tag.
    int mBypassIndex = -1;
    uint32_t mBypassTag = 0;
    std::atomic<EBypassWay> mBypassWay{EBypassWay::kCopy};
    // STANDARD: what aaxhost and other test hosts read of each published
    // parameter beyond what AAX carries.
    struct SParameterNote {
        std::string id;
        std::string units;
        std::string group;
    };
    std::vector<SParameterNote> mNotes;
    std::unique_ptr<CBypassDelay> mBypassDelay;
    int32_t mReportedLatency = 0;
    std::string mReportedTail;
};
