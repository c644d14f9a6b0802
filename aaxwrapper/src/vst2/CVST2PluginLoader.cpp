#include "vst2/CVST2PluginLoader.h"

#include <cstring>
#include <vector>

#include "logger/CLog.h"
#include "sharedobject/SharedObject.h"

namespace {

constexpr int kTextSize = 256;
constexpr int kTestFrames = 512;
constexpr int kTestBlocks = 5;

const char* const kEntryNames[] = {"VSTPluginMain", "main", "main_macho"};

const char* CanDoAnswerText(VstIntPtr answer)
{
    switch (answer) {
    case 0: return "don't know";
    case 1: return "yes";
    case -1: return "definitely not!";
    default: return "?????";
    }
}

}  // namespace

CVST2PluginLoader::CVST2PluginLoader() = default;
CVST2PluginLoader::~CVST2PluginLoader() = default;

CVST2PluginLoader::EntryFunction CVST2PluginLoader::loadLibrary(const char* path)
{
    mLibrary.reset();
    mLibrary = std::make_unique<Morvane::SharedObject>();
    mLibrary->isBundle = true;

    if (path == nullptr || !mLibrary->OpenBundle(path)) {
        MV_LOG("process", kLogNotice, "Library not found - Path = ", path != nullptr ? path : "");
        return EntryFunction();
    }
    MV_LOG("process", kLogNotice, "Loaded.");

    for (const char* name : kEntryNames) {
        EntryFunction entry = mLibrary->GetFunction<AEffect*(audioMasterCallback)>(name, true);
        if (entry)
            return entry;
    }
    return EntryFunction();
}

std::string CVST2PluginLoader::lastError() const
{
    if (!mLibrary)
        return "nothing loaded";
    if (mLibrary->handle == nullptr)
        return mLibrary->lastError.empty() ? std::string("not loadable") : mLibrary->lastError;
    return "none of VSTPluginMain, main, main_macho is exported";
}

bool CVST2PluginLoader::checkPlatform()
{
    MV_LOG("init", kLogDebug,
           sizeof(void*) == 8 ? "*** This is a 64 Bit Build! ***" : "*** This is a 32 Bit Build! ***");
    MV_LOG("init", kLogDebug, "VstIntPtr = ", sizeof(VstIntPtr), " Bytes, VstInt32 = ", sizeof(VstInt32),
           " Bytes, Pointer = ", sizeof(void*), " Bytes, AEffect = ", sizeof(AEffect), " Bytes");
    return true;
}

void CVST2PluginLoader::displayPluginsInfo(AEffect* effect)
{
    MV_LOG("init", kLogDebug, "HOST> Init check sequence...");
    checkEffectProperties(effect);
    checkEffectProcessing(effect);
    MV_LOG("init", kLogDebug, "HOST> Done...");
}

void CVST2PluginLoader::checkEffectProperties(AEffect* effect)
{
    if (effect == nullptr || effect->dispatcher == nullptr)
        return;
    MV_LOG("init", kLogDebug, "HOST> Gathering properties...");

    // One spare byte beyond what is handed out, so a plug-in that fills the
    // whole buffer still leaves it terminated.
    char name[kTextSize + 1] = {};
    char vendor[kTextSize + 1] = {};
    char product[kTextSize + 1] = {};
    effect->dispatcher(effect, effGetEffectName, 0, 0, name, 0.0f);
    effect->dispatcher(effect, effGetVendorString, 0, 0, vendor, 0.0f);
    effect->dispatcher(effect, effGetProductString, 0, 0, product, 0.0f);
    MV_LOG("init", kLogDebug, "Name = ", name);
    MV_LOG("init", kLogDebug, "Vendor = ", vendor);
    MV_LOG("init", kLogDebug, "Product = ", product);
    MV_LOG("init", kLogDebug, "numPrograms = ", effect->numPrograms);
    MV_LOG("init", kLogDebug, "numParams = ", effect->numParams);
    MV_LOG("init", kLogDebug, "numInputs = ", effect->numInputs);
    MV_LOG("init", kLogDebug, "numOutputs = ", effect->numOutputs);

    for (VstInt32 i = 0; i < effect->numPrograms; ++i) {
        char programName[kTextSize + 1] = {};
        if (effect->dispatcher(effect, effGetProgramNameIndexed, i, 0, programName, 0.0f) == 0) {
            effect->dispatcher(effect, effSetProgram, 0, i, nullptr, 0.0f);
            effect->dispatcher(effect, effGetProgramName, 0, 0, programName, 0.0f);
        }
        MV_LOG("init", kLogDebug, "Program ", i, ": ", programName);
    }
    MV_LOG("init", kLogDebug, "Iterate Program OK");

    for (VstInt32 i = 0; i < effect->numParams; ++i) {
        char paramName[kTextSize + 1] = {};
        char label[kTextSize + 1] = {};
        char display[kTextSize + 1] = {};
        effect->dispatcher(effect, effGetParamName, i, 0, paramName, 0.0f);
        effect->dispatcher(effect, effGetParamLabel, i, 0, label, 0.0f);
        effect->dispatcher(effect, effGetParamDisplay, i, 0, display, 0.0f);
        const float value = effect->getParameter != nullptr ? effect->getParameter(effect, i) : 0.0f;
        MV_LOG("init", kLogDebug, "Param ", i, ": ", paramName, "[", display, ",", label,
               "] normalized = ", value);
    }
    MV_LOG("init", kLogDebug, "Iterate parameters OK");

    const char* const capabilities[] = {"receiveVstEvents", "receiveVstMidiEvent", "midiProgramNames"};
    for (const char* capability : capabilities) {
        MV_LOG("init", kLogDebug, "Can do ", capability);
        // The plug-in receives its own writable copy of the text.
        char query[kTextSize] = {};
        std::strncpy(query, capability, sizeof(query) - 1);
        const VstIntPtr answer = effect->dispatcher(effect, effCanDo, 0, 0, query, 0.0f);
        MV_LOG("init", kLogDebug, CanDoAnswerText(answer));
        MV_LOG("init", kLogDebug, "");
    }
    MV_LOG("init", kLogDebug, "Can-Do OK");
}

void CVST2PluginLoader::checkEffectProcessing(AEffect* effect)
{
    if (effect == nullptr || effect->dispatcher == nullptr)
        return;
    const int inputs = effect->numInputs > 0 ? effect->numInputs : 0;
    const int outputs = effect->numOutputs > 0 ? effect->numOutputs : 0;
    std::vector<std::vector<float>> inputBuffers(inputs, std::vector<float>(kTestFrames, 0.0f));
    std::vector<std::vector<float>> outputBuffers(outputs, std::vector<float>(kTestFrames, 0.0f));
    std::vector<float*> inputPointers;
    std::vector<float*> outputPointers;
    for (auto& buffer : inputBuffers)
        inputPointers.push_back(buffer.data());
    for (auto& buffer : outputBuffers)
        outputPointers.push_back(buffer.data());
    // An effect without inputs (or outputs) gets a null array for that side.
    float** in = inputPointers.empty() ? nullptr : inputPointers.data();
    float** out = outputPointers.empty() ? nullptr : outputPointers.data();

    MV_LOG("init", kLogDebug, "HOST> Resume effect...");
    effect->dispatcher(effect, effMainsChanged, 0, 1, nullptr, 0.0f);
    for (int block = 0; block < kTestBlocks; ++block) {
        MV_LOG("init", kLogDebug, "HOST> Process Replacing...");
        if (effect->processReplacing != nullptr)
            effect->processReplacing(effect, in, out, kTestFrames);
    }
    MV_LOG("init", kLogDebug, "HOST> Suspend effect...");
    effect->dispatcher(effect, effMainsChanged, 0, 0, nullptr, 0.0f);
}
