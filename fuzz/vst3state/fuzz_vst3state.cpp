// Feeds arbitrary bytes to CFakeHostVST3::SetState on our test instrument.
// The block is copied into a buffer of exactly its size, so any read past
// it is caught by the address sanitizer.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "AAX_CEffectParameters.h"
#include "vst3/CFakeHostVST3.h"

namespace {

class CFuzzOwner : public AAX_CEffectParameters {
public:
    ~CFuzzOwner() override = default;
};

struct CFuzzHost {
    CFuzzHost()
    {
        const char* dir = std::getenv("VST3_FUZZ_BUNDLE_DIR");
        path = std::string(dir ? dir : VST3_FUZZ_BUNDLE_DIR) + "/MrvTestSynth.vst3";
        host = std::make_unique<CFakeHostVST3>(owner, path);
        host->Init();
        host->Setup();
    }
    CFuzzOwner owner;
    std::string path;
    std::unique_ptr<CFakeHostVST3> host;
};

CFuzzHost* gHost = nullptr;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    gHost = new CFuzzHost;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > (1u << 20))
        return 0;
    std::vector<uint8_t> block(data, data + size);
    gHost->host->SetState(block.empty() ? nullptr : block.data(), static_cast<uint32_t>(size));
    return 0;
}
