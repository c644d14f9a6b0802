// AAXWrapper_Parameters against a scripted fake host: parameter publishing,
// AAX-to-VST forwarding, the private-data field, the state chunks and the
// construction / destruction sequences.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "AAXWrapper_Identity.h"
#include "AAX_CString.h"
#include "S_Alg_Context.h"
#include "WrapperFixture.h"

namespace {

using ParametersTest = WrapperTest;

std::vector<std::string> ParameterIDs(AAXWrapper_Parameters& wrapper)
{
    int32_t count = 0;
    wrapper.GetNumberOfParameters(&count);
    std::vector<std::string> ids;
    for (int32_t i = 0; i < count; ++i) {
        AAX_CString id;
        wrapper.GetParameterIDFromIndex(i, &id);
        ids.push_back(id.Get());
    }
    return ids;
}

std::vector<char> ChunkBlock(int32_t dataSize)
{
    return std::vector<char>(sizeof(AAX_SPlugInChunk) + static_cast<size_t>(std::max(dataSize, 0)));
}

}  // namespace

TEST_F(ParametersTest, ConstructionLogsBundleAndPluginInfoThenInits)
{
    Script().values = {0.5f};
    auto wrapper = MakeWrapper();
    EXPECT_EQ(mLog->Find("fakehost", "notice", "## Bundle id           : " + BUNDLE_ID).size(), 1u);
    EXPECT_EQ(mLog->Find("fakehost", "notice", "## AAX Unique ID       : 1417041458").size(), 1u);
    EXPECT_EQ(mLog->Find("fakehost", "notice", "## Git Revision        : " + GIT_REVISION).size(), 1u);
    EXPECT_EQ(mLog->Find("fakehost", "notice", "## Vendor   : Double Vendor").size(), 1u);
    EXPECT_EQ(mLog->Find("fakehost", "notice", "## Unique ID: 4242").size(), 1u);
    EXPECT_EQ(Script().journal, (std::vector<std::string>{"Init"}));
    EXPECT_EQ(mLog->Find("fakehost", "error", "Fakehost null.").size(), 0u);
}

TEST_F(ParametersTest, MissingPluginFileIsLoggedPerCandidateAndTheHostGetsAnEmptyPath)
{
    // The test identity names a plug-in that exists nowhere.
    auto wrapper = MakeWrapper();
    const std::string fileName = VST_PLUGIN_NAME + "." + VST_PLUGIN_EXTENSION;
    EXPECT_EQ(mLog->Find("fakehost", "warning", "VST file not found on /Library/Audio/Plug-Ins/VST/" + fileName).size(),
              1u);
    EXPECT_EQ(mLog->Find("fakehost", "warning", "VST file not found on /Library/Audio/Plug-Ins/VST3/" + fileName).size(),
              1u);
    EXPECT_EQ(mLog->Find("fakehost", "warning", "VST file not found on /usr/lib/vst/" + fileName).size(), 1u);
    EXPECT_TRUE(Script().pathSeen.empty());
}

TEST_F(ParametersTest, WithoutHostOnlyTheMasterBypassIsPublished)
{
    WithoutHost();
    auto wrapper = MakeWrapper();
    EXPECT_EQ(mLog->Find("fakehost", "error", "Fakehost null.").size(), 1u);
    EXPECT_EQ(wrapper->EffectInit(), AAX_SUCCESS);
    EXPECT_EQ(ParameterIDs(*wrapper), (std::vector<std::string>{"MasterBypassID"}));
    EXPECT_EQ(wrapper->UpdateParameterNormalizedValue("MasterBypassID", 1.0, AAX_eUpdateSource_Parameter),
              AAX_SUCCESS);
}

TEST_F(ParametersTest, FakeHostExceptionsStopAtTheAAXBoundary)
{
    Script().values = {0.5f};
    Script().failAssertions = true;
    auto wrapper = MakeWrapper();
    EXPECT_EQ(mLog->Find("fakehost", "error", "Exception in Init - mVst3Loader!=0").size(), 1u);
    EXPECT_EQ(wrapper->EffectInit(), AAX_SUCCESS);
    EXPECT_EQ(ParameterIDs(*wrapper), (std::vector<std::string>{"MasterBypassID"}));
    EXPECT_EQ(mLog->Find("fakehost", "error", "Exception in EffectInit - count").size(), 1u);
}

TEST_F(ParametersTest, EffectInitMirrorsEveryVstParameterThenCallsSetup)
{
    Script().values = {0.25f, 0.75f, 1.0f};
    auto wrapper = MakeWrapper();
    ASSERT_EQ(wrapper->EffectInit(), AAX_SUCCESS);
    EXPECT_EQ(ParameterIDs(*wrapper), (std::vector<std::string>{"MasterBypassID", "0", "1", "2"}));
    double value = 0.0;
    ASSERT_EQ(wrapper->GetParameterNormalizedValue("1", &value), AAX_SUCCESS);
    EXPECT_DOUBLE_EQ(value, 0.75);
    int32_t steps = 0;
    wrapper->GetParameterNumberOfSteps("2", &steps);
    EXPECT_EQ(steps, 50);
    wrapper->GetParameterNumberOfSteps("MasterBypassID", &steps);
    EXPECT_EQ(steps, 2);
    AAX_CString name;
    wrapper->GetParameterName("2", &name);
    EXPECT_STREQ(name.Get(), "Param2");
    EXPECT_EQ(Script().journal.back(), "Setup");
    EXPECT_EQ(mLog->Find("parameters", "debug", "[ EffectInit ]  Add Parameter id:1 name:Param1 value:0.75 uid=1")
                  .size(),
              1u);
}

TEST_F(ParametersTest, ParameterChangesReachTheEditorThenTheAudioSideOnce)
{
    Script().values.assign(13, 0.0f);
    Script().values[12] = 0.25f;
    Script().values[3] = -1.0f;
    auto wrapper = MakeWrapper();
    wrapper->EffectInit();
    Script().journal.clear();
    mLog->Clear();

    EXPECT_EQ(wrapper->UpdateParameterNormalizedValue("12", 0.5, AAX_eUpdateSource_Parameter), AAX_SUCCESS);
    EXPECT_EQ(Script().journal, (std::vector<std::string>{"GUI 12 0.500000", "Processing 12 0.500000"}));
    EXPECT_EQ(mLog->Find("parameters", "debug", " Update parameter Param12 from 0.25 to 0.5").size(), 1u);
    double value = 0.0;
    wrapper->GetParameterNormalizedValue("12", &value);
    EXPECT_DOUBLE_EQ(value, 0.5) << "the base update still runs";

    Script().journal.clear();
    wrapper->UpdateParameterNormalizedValue("MasterBypassID", 1.0, AAX_eUpdateSource_Parameter);
    wrapper->UpdateParameterNormalizedValue("3", 0.9, AAX_eUpdateSource_Parameter);   // current -1.0
    wrapper->UpdateParameterNormalizedValue("0", 0.0, AAX_eUpdateSource_Parameter);   // unchanged
    EXPECT_TRUE(Script().journal.empty());
    EXPECT_EQ(wrapper->UpdateParameterNormalizedValue("99", 0.5, AAX_eUpdateSource_Parameter),
              AAX_ERROR_INVALID_PARAMETER_ID);
}

TEST_F(ParametersTest, PrivateDataFieldHoldsTheWrapperAddress)
{
    auto wrapper = MakeWrapper();
    unsigned char block[8];
    std::memset(block, 0xAB, sizeof(block));
    EXPECT_EQ(wrapper->ResetFieldData(kAlgField_PrivateData, block, sizeof(block)), AAX_SUCCESS);
    AAXWrapper_Parameters* stored = nullptr;
    std::memcpy(&stored, block, sizeof(stored));
    EXPECT_EQ(stored, wrapper.get());
    EXPECT_NE(wrapper->ResetFieldData(kAlgField_PrivateData, block, 4), AAX_SUCCESS) << "too small a block";
}

TEST_F(ParametersTest, WrapperChunkComesAfterTheBaseChunks)
{
    auto wrapper = MakeWrapper();
    wrapper->EffectInit();
    int32_t count = 0;
    EXPECT_EQ(wrapper->GetNumberOfChunks(&count), AAX_SUCCESS);
    EXPECT_EQ(count, 2);
    AAX_CTypeID id = 0;
    EXPECT_EQ(wrapper->GetChunkIDFromIndex(1, &id), AAX_SUCCESS);
    EXPECT_EQ(id, AAX_FourCC("TvV2"));
    EXPECT_EQ(wrapper->GetChunkIDFromIndex(0, &id), AAX_SUCCESS);
    EXPECT_EQ(id, cDefaultChunkID);
    EXPECT_EQ(wrapper->GetChunkIDFromIndex(2, &id), AAX_ERROR_INVALID_CHUNK_INDEX);
}

TEST_F(ParametersTest, WrapperChunkCarriesThePluginStateBothWays)
{
    auto wrapper = MakeWrapper();
    uint32_t size = 0;
    ASSERT_EQ(wrapper->GetChunkSize(kProductID, &size), AAX_SUCCESS);
    ASSERT_EQ(size, 5u);
    auto block = ChunkBlock(static_cast<int32_t>(size));
    auto* chunk = reinterpret_cast<AAX_SPlugInChunk*>(block.data());
    chunk->fSize = static_cast<int32_t>(size);
    chunk->fChunkID = kProductID;
    ASSERT_EQ(wrapper->GetChunk(kProductID, chunk), AAX_SUCCESS);
    EXPECT_EQ(std::string(chunk->fData, 5), "state");
    EXPECT_EQ(chunk->fChunkID, kProductID) << "header fields stay as the host set them";

    Script().state.clear();
    EXPECT_EQ(wrapper->SetChunk(kProductID, chunk), AAX_SUCCESS);
    EXPECT_EQ(std::string(Script().state.begin(), Script().state.end()), "state");
    EXPECT_EQ(mLog->Find("parameters", "info", "SetChunk OUT 1417041458 size = 5").size(), 1u);

    // A corrupt size never reaches the plug-in, and the silence still ends.
    chunk->fSize = -4;
    Script().journal.clear();
    EXPECT_EQ(wrapper->SetChunk(kProductID, chunk), AAX_SUCCESS);
    EXPECT_TRUE(Script().journal.empty());
    EXPECT_FALSE(wrapper->IsLoadingState());
}

TEST_F(ParametersTest, StateThatGrewSinceTheSizeQueryIsNotWrittenPastTheHostBlock)
{
    auto wrapper = MakeWrapper();
    uint32_t size = 0;
    ASSERT_EQ(wrapper->GetChunkSize(kProductID, &size), AAX_SUCCESS);
    auto block = ChunkBlock(static_cast<int32_t>(size));
    auto* chunk = reinterpret_cast<AAX_SPlugInChunk*>(block.data());
    chunk->fSize = static_cast<int32_t>(size);
    Script().state = {'l', 'o', 'n', 'g', 'e', 'r', ' ', 's', 't', 'a', 't', 'e'};
    Script().journal.clear();
    EXPECT_EQ(wrapper->GetChunk(kProductID, chunk), AAX_ERROR_INCORRECT_CHUNK_SIZE);
    EXPECT_EQ(Script().journal, std::vector<std::string>{"GetState size"}) << "measured, never written";
    EXPECT_EQ(chunk->fSize, static_cast<int32_t>(size));
    EXPECT_EQ(mLog->Find("parameters", "error", "GetChunk state of 12 bytes does not fit the chunk of 5 bytes").size(),
              1u);
}

TEST_F(ParametersTest, WithoutHostTheWrapperChunkIsEmptyButSucceeds)
{
    WithoutHost();
    auto wrapper = MakeWrapper();
    uint32_t size = 12345;
    EXPECT_EQ(wrapper->GetChunkSize(kProductID, &size), AAX_SUCCESS);
    EXPECT_EQ(size, 12345u) << "the size must not be written";
    auto block = ChunkBlock(4);
    auto* chunk = reinterpret_cast<AAX_SPlugInChunk*>(block.data());
    chunk->fSize = 4;
    EXPECT_EQ(wrapper->GetChunk(kProductID, chunk), AAX_SUCCESS);
    EXPECT_EQ(chunk->fSize, 4);
    EXPECT_EQ(wrapper->SetChunk(kProductID, chunk), AAX_SUCCESS);
    EXPECT_FALSE(wrapper->IsLoadingState());
}

TEST_F(ParametersTest, DestructionQuitsThenDeletesTheHostAndTearsTheLogDown)
{
    auto wrapper = MakeWrapper();
    CLog* const logBefore = CSingleton<CLog>::getInstance();
    wrapper.reset();
    EXPECT_EQ(Script().journal, (std::vector<std::string>{"Init", "Quit", "~FakeHostDouble"}));
    EXPECT_EQ(mLog->Find("parameters", "info", "[ ~AAXWrapper_Parameters ]  QUIT OK").size(), 1u);
    EXPECT_EQ(mLog->Find("parameters", "info", "[ ~AAXWrapper_Parameters ]  NULL  OK").size(), 1u);
    // A fresh log comes up on the next use: configured from scratch.
    CLog* const logAfter = CSingleton<CLog>::getInstance();
    EXPECT_FALSE(logAfter->isRecorded("parameters", kLogError));
    (void)logBefore;
    mLog->Attach();
}
