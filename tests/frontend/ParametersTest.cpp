// AAXWrapper_Parameters against a scripted fake host, in the cases a real
// plug-in cannot stage: exceptions at the AAX boundary, the forwarding
// rules, a state that grows between the size query and the copy, and bad
// chunks and field blocks. Publishing and state round trips run end to end.
#include <gtest/gtest.h>

#include <vector>

#include "AAXWrapper_Identity.h"
#include "S_Alg_Context.h"
#include "WrapperFixture.h"

using ParametersTest = WrapperTest;

TEST_F(ParametersTest, FakeHostExceptionsStopAtTheAAXBoundary)
{
    Script().values = {0.5f};
    Script().failAssertions = true;
    auto wrapper = MakeWrapper();
    EXPECT_EQ(wrapper->EffectInit(), AAX_SUCCESS);
    int32_t count = 0;
    wrapper->GetNumberOfParameters(&count);
    EXPECT_EQ(count, 1) << "only the master bypass";
}

TEST_F(ParametersTest, ParameterChangesReachTheEditorThenTheAudioSideOnce)
{
    Script().values.assign(13, 0.0f);
    Script().values[12] = 0.25f;
    Script().values[3] = -1.0f;
    auto wrapper = MakeWrapper();
    wrapper->EffectInit();
    Script().journal.clear();

    EXPECT_EQ(wrapper->UpdateParameterNormalizedValue("12", 0.5, AAX_eUpdateSource_Parameter), AAX_SUCCESS);
    EXPECT_EQ(Script().journal, (std::vector<std::string>{"GUI 12 0.500000", "Processing 12 0.500000"}));
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

// The host sizes its block by GetChunkSize and fills it by GetChunk: the
// state measured is the state written, whatever the plug-in says in between;
// without a measure, a state larger than the block is refused, never written
// past it.
TEST_F(ParametersTest, GetChunkWritesTheStateGetChunkSizeMeasured)
{
    auto wrapper = MakeWrapper();
    const std::vector<char> measured = Script().state;
    uint32_t size = 0;
    ASSERT_EQ(wrapper->GetChunkSize(kProductID, &size), AAX_SUCCESS);
    ASSERT_EQ(size, measured.size());
    Chunk chunk(size);
    Script().state = {'l', 'o', 'n', 'g', 'e', 'r', ' ', 's', 't', 'a', 't', 'e'};
    Script().journal.clear();
    EXPECT_EQ(wrapper->GetChunk(kProductID, chunk.get()), AAX_SUCCESS);
    EXPECT_TRUE(Script().journal.empty()) << "the plug-in is not asked again";
    EXPECT_EQ(std::vector<char>(chunk.get()->fData, chunk.get()->fData + chunk.get()->fSize), measured);

    Chunk small(size);
    EXPECT_EQ(wrapper->GetChunk(kProductID, small.get()), AAX_ERROR_INCORRECT_CHUNK_SIZE);
    EXPECT_EQ(small.get()->fSize, static_cast<int32_t>(size));
}

// A corrupt chunk size never reaches the plug-in and the silence still ends;
// a field block too small for a pointer is refused.
TEST_F(ParametersTest, BadChunkAndFieldBlock)
{
    auto wrapper = MakeWrapper();
    Chunk chunk(5);
    chunk.get()->fSize = -4;
    Script().journal.clear();
    EXPECT_EQ(wrapper->SetChunk(kProductID, chunk.get()), AAX_SUCCESS);
    EXPECT_TRUE(Script().journal.empty());
    EXPECT_FALSE(wrapper->IsLoadingState());

    unsigned char block[8];
    EXPECT_EQ(wrapper->ResetFieldData(kAlgField_PrivateData, block, sizeof(block)), AAX_SUCCESS);
    EXPECT_NE(wrapper->ResetFieldData(kAlgField_PrivateData, block, 4), AAX_SUCCESS);
}

TEST_F(ParametersTest, WithoutHostTheWrapperChunkIsEmptyButSucceeds)
{
    WithoutHost();
    auto wrapper = MakeWrapper();
    uint32_t size = 12345;
    EXPECT_EQ(wrapper->GetChunkSize(kProductID, &size), AAX_SUCCESS);
    EXPECT_EQ(size, 12345u) << "the size must not be written";
    Chunk chunk(4);
    EXPECT_EQ(wrapper->GetChunk(kProductID, chunk.get()), AAX_SUCCESS);
    EXPECT_EQ(chunk.get()->fSize, 4);
    EXPECT_EQ(wrapper->SetChunk(kProductID, chunk.get()), AAX_SUCCESS);
    EXPECT_FALSE(wrapper->IsLoadingState());
}

TEST_F(ParametersTest, DestructionQuitsThenDeletesTheHostAndTearsTheLogDown)
{
    auto wrapper = MakeWrapper();
    wrapper.reset();
    EXPECT_EQ(Script().journal, (std::vector<std::string>{"Init", "Quit", "~FakeHostDouble"}));
    // A fresh log comes up on the next use: configured from scratch.
    EXPECT_FALSE(CSingleton<CLog>::getInstance()->isRecorded("parameters", kLogError));
    mLog->Attach();
}
