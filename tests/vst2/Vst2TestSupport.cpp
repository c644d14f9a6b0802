#include "Vst2TestSupport.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace Vst2Test {

std::string BuiltPlugin(const std::string& name) { return std::string(VST2_TEST_VST_DIR) + "/" + name; }

std::string TavrionPath() { return BuiltPlugin("Tavrion V2.vst"); }

bool FileExists(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

AAX_CMidiPacket Packet(uint32_t timestamp, std::vector<unsigned char> bytes, bool immediate)
{
    AAX_CMidiPacket packet;
    packet.mTimestamp = timestamp;
    packet.mLength = static_cast<uint32_t>(bytes.size());
    for (size_t i = 0; i < bytes.size() && i < 4; ++i)
        packet.mData[i] = bytes[i];
    packet.mIsImmediate = immediate ? 1 : 0;
    return packet;
}

CTestContext::CTestContext(int32_t initialFrames, float rate)
    : sampleRate(rate), frames(initialFrames), mInputBuffers(kInputs), mOutputBuffers(kOutputs)
{
    transportNode.transport = &transport;
    context.mBypass = &bypass;
    context.mSampleRate = &sampleRate;
    context.mMidiIn = &midiIn;
    context.mMidiOut = &midiOut;
    context.mMidiTransport = &transportNode;
    context.mBufferLength = &frames;
    SetFrames(initialFrames);
}

void CTestContext::SetFrames(int32_t count)
{
    frames = count;
    mInputs.clear();
    mOutputs.clear();
    for (auto& buffer : mInputBuffers) {
        buffer.assign(static_cast<size_t>(count), 0.0f);
        mInputs.push_back(buffer.data());
    }
    for (auto& buffer : mOutputBuffers) {
        buffer.assign(static_cast<size_t>(count), 0.0f);
        mOutputs.push_back(buffer.data());
    }
    context.mInputs = mInputs.data();
    context.mOutputs = mOutputs.data();
}

void CTestContext::FillOutputs(float value)
{
    for (auto& buffer : mOutputBuffers)
        std::fill(buffer.begin(), buffer.end(), value);
}

bool CTestContext::OutputIsSilent(int channel) const
{
    const auto& buffer = mOutputBuffers[channel];
    return std::all_of(buffer.begin(), buffer.end(), [](float s) { return s == 0.0f; });
}

CProbeRecord::CProbeRecord()
{
    char pattern[] = "/tmp/vst2probe.XXXXXX";
    const int fd = mkstemp(pattern);
    if (fd >= 0)
        close(fd);
    mPath = pattern;
    setenv("VST2PROBE_LOG", mPath.c_str(), 1);
}

CProbeRecord::~CProbeRecord()
{
    unsetenv("VST2PROBE_LOG");
    std::remove(mPath.c_str());
}

std::vector<std::string> CProbeRecord::Lines() const
{
    std::vector<std::string> lines;
    std::ifstream in(mPath);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> CProbeRecord::LinesStartingWith(const std::string& prefix) const
{
    std::vector<std::string> selected;
    for (const std::string& line : Lines())
        if (line.compare(0, prefix.size(), prefix) == 0)
            selected.push_back(line);
    return selected;
}

void CProbeRecord::Clear() const { std::ofstream(mPath, std::ios::trunc); }

HostedPlugin::HostedPlugin(const std::string& pluginPath, bool init) : path(pluginPath)
{
    host = std::make_unique<CFakeHostVST2>(owner, path);
    if (init)
        host->Init();
}

HostedPlugin::~HostedPlugin()
{
    if (host) {
        host->QuitGUI();
        host->Quit();
    }
}

CLogCapture::CLogCapture(const std::vector<std::string>& categories)
{
    char pattern[] = "/tmp/vst2log.XXXXXX";
    const int fd = mkstemp(pattern);
    if (fd >= 0)
        close(fd);
    mConfPath = pattern;
    {
        std::ofstream conf(mConfPath);
        for (const std::string& category : categories)
            conf << category << " debug\n";
    }
    CLog* log = CSingleton<CLog>::getInstance();
    log->reloadConf(mConfPath);
    log->setRecordListener(this);
}

CLogCapture::~CLogCapture()
{
    CLog* log = CSingleton<CLog>::getInstance();
    log->setRecordListener(nullptr);
    log->reloadConf("");
    std::remove(mConfPath.c_str());
}

bool CLogCapture::Contains(const std::string& text) const { return Count(text) > 0; }

size_t CLogCapture::Count(const std::string& text) const
{
    size_t count = 0;
    for (const std::string& line : lines)
        for (size_t pos = line.find(text); pos != std::string::npos; pos = line.find(text, pos + text.size()))
            ++count;
    return count;
}

}  // namespace Vst2Test
