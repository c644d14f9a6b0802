// Arbitrary bytes as a saved state of the default product: the first byte
// picks the chunk (the AAX library's parameter chunk or the wrapper's own),
// the rest is its data. The chunk is restored into a live instance, which
// then processes a buffer and saves itself again.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <sstream>
#include <vector>

#include "AAXWrapper_AlgorithmProcess.h"
#include "AAXWrapper_Parameters.h"
#include "HostController.h"
#include "S_Alg_Context.h"
#include "TransportState.h"

namespace {

constexpr AAX_CTypeID kElck = 0x656C636B;
constexpr AAX_CTypeID kWrapper = 0x54765632;  // 'TvV2'
constexpr int32_t kFrames = 64;

struct SFuzzInstance {
    SFuzzInstance()
    {
        controller = new AAXHost::CHostController("com.morvane.aax.fuzzsetchunk", 48000.0f, AAX_eStemFormat_Stereo,
                                                  AAX_eStemFormat_Stereo, transport);
        wrapper = static_cast<AAXWrapper_Parameters*>(AAXWrapper_Parameters::Create());
        wrapper->AddRef();
        wrapper->Initialize(static_cast<AAX_IACFController*>(controller));
        controller->SetEffect(wrapper);
        wrapper->ResetFieldData(kAlgField_PrivateData, privateData, sizeof(privateData));
        for (int c = 0; c < kAlgBypassChannels; ++c)
            inputs[c] = inputData[c];
        for (int c = 0; c < 2 + 2 * kNumOutputStems; ++c)
            outputs[c] = outputData[c];
        context.mBypass = &bypass;
        context.mSampleRate = &rate;
        context.mInputs = inputs;
        context.mOutputs = outputs;
        context.mBufferLength = &frames;
        context.mPrivateData = privateData;
    }

    AAXHost::STransportState transport;
    AAXHost::CHostController* controller = nullptr;
    AAXWrapper_Parameters* wrapper = nullptr;
    S_Alg_Context context{};
    int32_t bypass = 0;
    float rate = 48000.0f;
    int32_t frames = kFrames;
    alignas(void*) unsigned char privateData[8] = {};
    float inputData[kAlgBypassChannels][kFrames] = {};
    float outputData[2 + 2 * kNumOutputStems][kFrames] = {};
    float* inputs[kAlgBypassChannels] = {};
    float* outputs[2 + 2 * kNumOutputStems] = {};
};

SFuzzInstance* gInstance = nullptr;
std::ostringstream gSink;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    std::cout.rdbuf(gSink.rdbuf());  // registration and log banners
    gInstance = new SFuzzInstance;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    const AAX_CTypeID id = (data[0] & 1) ? kWrapper : kElck;
    const size_t dataSize = size - 1;
    // A chunk record of exactly the declared size, so that reads past it are caught.
    std::vector<char> storage(offsetof(AAX_SPlugInChunk, fData) + dataSize);
    auto* chunk = reinterpret_cast<AAX_SPlugInChunk*>(storage.data());
    chunk->fSize = static_cast<int32_t>(dataSize);
    chunk->fChunkID = id;
    if (dataSize > 0)
        std::memcpy(chunk->fData, data + 1, dataSize);
    AAXWrapper_Parameters& wrapper = *gInstance->wrapper;
    wrapper.SetChunk(id, chunk);

    S_Alg_Context* batch[] = {&gInstance->context};
    AAXWrapper_AlgorithmProcessFunction(batch, batch + 1);

    uint32_t saved = 0;
    if (wrapper.GetChunkSize(kWrapper, &saved) == AAX_SUCCESS && saved < (1u << 24)) {
        std::vector<char> out(offsetof(AAX_SPlugInChunk, fData) + saved);
        auto* back = reinterpret_cast<AAX_SPlugInChunk*>(out.data());
        back->fSize = static_cast<int32_t>(saved);
        wrapper.GetChunk(kWrapper, back);
    }
    gSink.str(std::string());
    return 0;
}
