#include "HostInstance.h"

#include <algorithm>
#include <cstring>

#include "AlignedChannels.h"
#include "ResultText.h"

namespace AAXHost {

namespace {

int32_t PropertyOr(const SComponentInfo& c, int32_t id, int32_t fallback)
{
    for (const auto& p : c.processProcs)
        for (const auto& prop : p.properties)
            if (prop.first == id)
                return prop.second;
    return fallback;
}

}  // namespace

CHostInstance::CHostInstance(const SEffectInfo& effect, const SComponentInfo& component, const SInstanceConfig& config,
                             const STransportState& transport)
    : mEffectInfo(effect), mComponent(component), mConfig(config), mTransport(transport), mTransportView(transport)
{
    mConfig.inputChannels = std::max(mConfig.inputChannels, 32);
    mConfig.outputChannels = std::max(mConfig.outputChannels, 2);
}

CHostInstance::~CHostInstance() { Destroy(); }

void CHostInstance::Destroy()
{
    if (mEffect) {
        if (mInitialized)
            mEffect->Uninitialize();
        mEffect->Release();
        mEffect = nullptr;
    }
    if (mController) {
        mController->SetEffect(nullptr);
        mController->Release();
        mController = nullptr;
    }
    mInitialized = false;
}

bool CHostInstance::Create(std::string& error)
{
    auto factory = reinterpret_cast<AAX_CreateEffectParametersProc>(mEffectInfo.ProcPtr(kAAX_ProcPtrID_Create_EffectParameters));
    if (!factory) {
        error = "the effect registered no effect-parameters factory";
        return false;
    }
    AAX_IEffectParameters* raw = factory();
    if (!raw) {
        error = "the effect-parameters factory returned null";
        return false;
    }
    void* queried = nullptr;
    if (raw->QueryInterface(IID_IAAXEffectParametersV1, &queried) != ACF_OK || !queried) {
        error = "the effect-parameters object does not answer IID_IAAXEffectParametersV1";
        return false;
    }
    mEffect = static_cast<AAX_IACFEffectParameters*>(queried);

    mController = new CHostController(mEffectInfo.effectID, static_cast<float>(mConfig.sampleRate),
                                      PropertyOr(mComponent, AAX_eProperty_InputStemFormat, AAX_eStemFormat_Stereo),
                                      PropertyOr(mComponent, AAX_eProperty_OutputStemFormat, AAX_eStemFormat_Stereo),
                                      mTransport);
    const AAX_Result r = mEffect->Initialize(static_cast<AAX_IACFController*>(mController));
    mWrapperStatus = ReadWrapperStatus(*mEffect);
    mWrapperStatus.latency = mController->Latency();
    // A wrapper around nothing would render silence and look like success.
    const bool notLoaded = mWrapperStatus.present && !mWrapperStatus.loaded;
    if (r != AAX_SUCCESS) {
        error = notLoaded ? NotLoadedMessage(mWrapperStatus) : "Initialize failed with " + ResultText(r);
        return false;
    }
    mInitialized = true;
    if (notLoaded) {
        error = NotLoadedMessage(mWrapperStatus);
        return false;
    }
    mController->SetEffect(mEffect);
    return BuildContext(error);
}

uint8_t* CHostInstance::FieldBlock(AAX_CFieldIndex index)
{
    for (auto& b : mFieldBlocks)
        if (b.index == index)
            return b.bytes.data();
    return nullptr;
}

bool CHostInstance::BuildContext(std::string& error)
{
    AAX_CFieldIndex highest = 8;
    for (const auto& c : mComponent.calls)
        highest = std::max(highest, c.fieldIndex);
    mSlots.assign(static_cast<size_t>(highest) + 1, nullptr);

    const size_t block = static_cast<size_t>(mConfig.maxBlock);
    mInputPtrs = AlignedChannels(mInputData, static_cast<size_t>(mConfig.inputChannels), block);
    mOutputPtrs = AlignedChannels(mOutputData, static_cast<size_t>(mConfig.outputChannels), block);
    mSampleRateField = static_cast<float>(mConfig.sampleRate);

    // Field blocks are all sized before any address is taken.
    for (const auto& c : mComponent.calls) {
        int64_t size = 0;
        if (c.call == "AddDataInPort" || c.call == "AddPrivateData")
            size = c.args.empty() ? 0 : c.args.front().second;
        if (size > 0 && size < (1 << 20))
            mFieldBlocks.push_back({c.fieldIndex, std::vector<uint8_t>(static_cast<size_t>(size), 0)});
    }

    for (const auto& c : mComponent.calls) {
        if (c.fieldIndex < 0)
            continue;
        void*& slot = mSlots[static_cast<size_t>(c.fieldIndex)];
        if (c.call == "AddAudioIn" || c.call == "AddSideChainIn")
            slot = mInputPtrs.data();
        else if (c.call == "AddAudioOut")
            slot = mOutputPtrs.data();
        else if (c.call == "AddAudioBufferLength")
            slot = &mBufferLength;
        else if (c.call == "AddSampleRate")
            slot = &mSampleRateField;
        else if (c.call == "AddClock")
            slot = &mClock;
        else if (c.call == "AddDataInPort" || c.call == "AddPrivateData")
            slot = FieldBlock(c.fieldIndex);
        else if (c.call == "AddMIDINode") {
            const int32_t type = static_cast<int32_t>(c.args.front().second);
            mMidiNodes.push_back(std::make_unique<CHostMidiNode>(type, &mTransportView, &mBlockStart));
            slot = static_cast<AAX_IMIDINode*>(mMidiNodes.back().get());
        }
    }

    // Hosts hand every data block to the plug-in to initialise; private data
    // is where the plug-in keeps its own pointers.
    for (auto& b : mFieldBlocks) {
        const AAX_Result r = mEffect->ResetFieldData(b.index, b.bytes.data(), static_cast<uint32_t>(b.bytes.size()));
        if (r != AAX_SUCCESS) {
            error = "ResetFieldData(" + std::to_string(b.index) + ") failed with " + ResultText(r);
            return false;
        }
    }
    return true;
}

void CHostInstance::PrepareBlock(int64_t blockStart, int32_t frames, const std::vector<AAX_CMidiPacket>& midiIn)
{
    mBlockStart = blockStart;
    mBufferLength = frames;
    mClock = blockStart;
    mEffect->GenerateCoefficients();
    for (const auto& p : mController->TakePackets()) {
        for (auto& b : mFieldBlocks)
            if (b.index == p.field) {
                const size_t n = std::min(b.bytes.size(), p.payload.size());
                std::memcpy(b.bytes.data(), p.payload.data(), n);
            }
    }
    for (auto& node : mMidiNodes) {
        if (node->Type() == AAX_eMIDINodeType_LocalInput) {
            node->SetBufferPackets(midiIn);
            mMidiInCount += midiIn.size();
        } else if (node->Type() != AAX_eMIDINodeType_LocalOutput) {
            node->SetBufferPackets({});
        }
    }
    FinishBlock();  // for a caller that skipped it
    if (mOutputUse.size() != mOutputPtrs.size() || mOutputsChanged.exchange(false, std::memory_order_acquire))
        mOutputUse.assign(mOutputPtrs.size(), EOutputUse::kUnknown);
    for (size_t ch = 0; ch < mOutputPtrs.size(); ++ch) {
        float* out = mOutputPtrs[ch];
        if (mOutputUse[ch] == EOutputUse::kCleared)
            std::fill(out, out + frames, 0.0f);
        else if (mOutputUse[ch] == EOutputUse::kUnknown)
            std::fill(out, out + frames, OutputMark());
    }
    mMarkedFrames = frames;
}

float CHostInstance::OutputMark()
{
    // A quiet NaN with a payload no arithmetic produces.
    const uint32_t bits = 0x7FC0DEADu;
    float mark;
    std::memcpy(&mark, &bits, sizeof mark);
    return mark;
}

void CHostInstance::FinishBlock()
{
    if (mMarkedFrames <= 0)
        return;
    const float mark = OutputMark();
    for (size_t ch = 0; ch < mOutputPtrs.size(); ++ch) {
        if (mOutputUse[ch] != EOutputUse::kUnknown)
            continue;
        float* out = mOutputPtrs[ch];
        bool untouched = false;
        for (int32_t i = 0; i < mMarkedFrames; ++i) {
            if (std::memcmp(&out[i], &mark, sizeof mark) == 0) {
                out[i] = 0.0f;
                untouched = true;
            }
        }
        mOutputUse[ch] = untouched ? EOutputUse::kCleared : EOutputUse::kWritten;
    }
    mMarkedFrames = 0;
}

const CHostMidiNode* CHostInstance::MidiOut() const
{
    for (const auto& node : mMidiNodes)
        if (node->Type() == AAX_eMIDINodeType_LocalOutput)
            return node.get();
    return nullptr;
}

AAX_Result CHostInstance::SetParameter(const std::string& id, double value)
{
    mController->SetHostIsSetting(true);
    const AAX_Result r = mEffect->SetParameterNormalizedValue(id.c_str(), value);
    mController->SetHostIsSetting(false);
    // A new value (the master bypass above all) may change which outputs the
    // plug-in writes: the next buffer finds out again. Only asked for here,
    // since buffers may be prepared on another thread.
    mOutputsChanged.store(true, std::memory_order_release);
    return r;
}

}  // namespace AAXHost
