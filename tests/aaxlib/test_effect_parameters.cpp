#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include "AAX_CString.h"
#include "ChunkBuffer.h"
#include "HostDoubles.h"
#include "TestEffect.h"

using aaxlib_test::HostController;
using aaxlib_test::MakeChunk;
using aaxlib_test::TestEffect;

namespace {

// Creates and initialises an effect the way a host does, and tears it down
// the same way, checking that every reference comes back.
struct EffectFixture : ::testing::Test {
    HostController host;
    TestEffect* effect = nullptr;
    AAX_IEffectParameters* iface = nullptr;
    int32_t activeBefore = 0;

    void SetUp() override { activeBefore = CACFUnknown::GetActiveObjectCount(); }

    void Start(bool withPreview = false)
    {
        iface = reinterpret_cast<AAX_CreateEffectParametersProc>(&TestEffect::Create)();
        effect = dynamic_cast<TestEffect*>(iface);
        effect->withPreview = withPreview;
        void* p = nullptr;
        ASSERT_EQ(ACF_OK, iface->QueryInterface(IID_IAAXEffectParametersV1, &p));
        host.effect = iface;
        ASSERT_EQ(AAX_SUCCESS, iface->Initialize(static_cast<AAX_IACFController*>(&host)));
        host.posts.clear();
    }

    void TearDown() override
    {
        if (iface != nullptr) {
            iface->Uninitialize();
            EXPECT_EQ(0u, iface->Release());
        }
        EXPECT_EQ(0, host.counter.refs);
        EXPECT_EQ(activeBefore, CACFUnknown::GetActiveObjectCount());
    }

    aaxlib_test::ChunkPtr SaveElck()
    {
        uint32_t size = 0;
        EXPECT_EQ(AAX_SUCCESS, iface->GetChunkSize(cDefaultChunkID, &size));
        auto chunk = MakeChunk(static_cast<int32_t>(size));
        chunk->fChunkID = cDefaultChunkID;
        EXPECT_EQ(AAX_SUCCESS, iface->GetChunk(cDefaultChunkID, chunk.get()));
        return chunk;
    }

    double Normalized(const char* id)
    {
        double v = -1;
        EXPECT_EQ(AAX_SUCCESS, iface->GetParameterNormalizedValue(id, &v));
        return v;
    }
};

}  // namespace

TEST_F(EffectFixture, WithoutHostInterfacesEverythingStillWorks)
{
    host.answerInterfaces = false;
    Start();
    EXPECT_EQ(nullptr, effect->Controller());
    EXPECT_EQ(nullptr, effect->Transport());
    EXPECT_EQ(nullptr, effect->AutomationDelegate());
    // No automation: edits take effect at once.
    EXPECT_EQ(AAX_SUCCESS, iface->SetParameterNormalizedValue("0", 0.25));
    EXPECT_DOUBLE_EQ(0.25, Normalized("0"));
    EXPECT_EQ(AAX_ERROR_NULL_OBJECT, iface->GenerateCoefficients());
    // No preview switch either: a preview notification is ignored.
    const int32_t on = 1;
    EXPECT_EQ(AAX_SUCCESS, iface->NotificationReceived(AAX_eNotificationEvent_ASPreviewState, &on, 4));
}

TEST_F(EffectFixture, EffectInitErrorIsReturned)
{
    iface = TestEffect::Create();
    effect = dynamic_cast<TestEffect*>(iface);
    effect->initResult = AAX_ERROR_NULL_OBJECT;
    iface->AddRef();
    EXPECT_EQ(AAX_ERROR_NULL_OBJECT, iface->Initialize(static_cast<AAX_IACFController*>(&host)));
}

TEST_F(EffectFixture, UnknownIdentifiersAnswerInvalidParameterID)
{
    Start();
    int32_t changes = -1;
    iface->GetNumberOfChanges(&changes);
    const int32_t before = changes;

    AAX_CString s;
    double d = 0;
    int32_t i = 0;
    AAX_CBoolean b = 0;
    AAX_EParameterType type;
    AAX_EParameterOrientation orientation;
    const AAX_Result results[] = {
        iface->UpdateParameterNormalizedValue("nope", 0.3, AAX_eUpdateSource_Parameter),
        iface->GetParameterName("nope", &s),
        iface->GetParameterNameOfLength("nope", &s, 4),
        iface->GetParameterNumberOfSteps("nope", &i),
        iface->GetParameterValueString("nope", &s, 8),
        iface->GetParameterValueFromString("nope", &d, AAX_CString("1")),
        iface->GetParameterStringFromValue("nope", 0.5, &s, 8),
        iface->GetParameterNormalizedValue("nope", &d),
        iface->GetParameterDefaultNormalizedValue("nope", &d),
        iface->SetParameterDefaultNormalizedValue("nope", 0.5),
        iface->SetParameterNormalizedValue("nope", 0.5),
        iface->GetParameterIsAutomatable("nope", &b),
        iface->GetParameterType("nope", &type),
        iface->GetParameterOrientation("nope", &orientation),
        iface->GetParameterIndex("nope", &i),
        iface->TouchParameter("nope"),
        iface->ReleaseParameter("nope"),
        iface->GetParameterName(nullptr, &s),
    };
    for (size_t n = 0; n < sizeof results / sizeof results[0]; ++n)
        EXPECT_EQ(AAX_ERROR_INVALID_PARAMETER_ID, results[n]) << "call " << n;

    iface->GetNumberOfChanges(&changes);
    EXPECT_EQ(before, changes);
}

TEST_F(EffectFixture, PacketsAreSentOncePerDirtyParameter)
{
    Start();
    // Registered packets start dirty: the first dispatch sends them all.
    EXPECT_EQ(AAX_SUCCESS, iface->GenerateCoefficients());
    ASSERT_EQ(2u, host.posts.size());
    host.posts.clear();
    EXPECT_EQ(AAX_SUCCESS, iface->GenerateCoefficients());
    EXPECT_TRUE(host.posts.empty());

    iface->UpdateParameterNormalizedValue("0", 0.25, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("0", 0.75, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("1", 0.75, AAX_eUpdateSource_Parameter);  // no packet registered
    // A packet whose parameter the effect does not know: its handler fails.
    effect->Dispatcher().RegisterPacket("ghost", 5);
    iface->GenerateCoefficients();
    ASSERT_EQ(1u, host.posts.size());
    EXPECT_EQ(1, host.posts[0].field);
    ASSERT_EQ(4u, host.posts[0].bytes.size());
    float sent = 0;
    std::memcpy(&sent, host.posts[0].bytes.data(), 4);
    EXPECT_FLOAT_EQ(0.75f, sent);
    AAX_CPacket packet(5);
    EXPECT_EQ(AAX_ERROR_NULL_OBJECT, effect->Dispatcher().GenerateSingleValuePacket("ghost", packet));
}

// Host threads may add and release references and mark packets dirty while
// the host's GenerateCoefficients dispatches. Run under TSan for the races;
// the counts catch lost updates in any build.
TEST_F(EffectFixture, ReferencesAndDirtyMarksFromOtherThreads)
{
    Start();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([this] {
            for (int i = 0; i < 20000; ++i) {
                iface->AddRef();
                iface->Release();
            }
        });
    for (auto& th : threads) th.join();

    iface->GenerateCoefficients();
    host.posts.clear();
    constexpr int kMarks = 20000;
    std::thread marker([this] {
        for (int i = 0; i < kMarks; ++i) effect->Dispatcher().SetDirty("0", true);
    });
    for (int i = 0; i < kMarks; ++i) iface->GenerateCoefficients();
    marker.join();
    iface->GenerateCoefficients();  // whatever the last mark left dirty

    // Never more posts than marks, at least one, and nothing left dirty.
    EXPECT_GE(host.posts.size(), 1u);
    EXPECT_LE(host.posts.size(), static_cast<size_t>(kMarks));
    const size_t settled = host.posts.size();
    iface->GenerateCoefficients();
    EXPECT_EQ(settled, host.posts.size());
    for (const auto& post : host.posts) EXPECT_EQ(1, post.field);
}

TEST_F(EffectFixture, ChunkIndexAndIdentifierErrors)
{
    Start();
    AAX_CTypeID id = 123;
    uint32_t size = 99;
    EXPECT_EQ(AAX_ERROR_INVALID_CHUNK_INDEX, iface->GetChunkIDFromIndex(1, &id));
    EXPECT_EQ(0u, id);
    EXPECT_EQ(AAX_ERROR_INVALID_CHUNK_ID, iface->GetChunkSize(AAX_FourCC("TvV2"), &size));
    EXPECT_EQ(0u, size);

    auto chunk = MakeChunk(64);
    EXPECT_EQ(AAX_ERROR_INVALID_CHUNK_ID, iface->GetChunk(AAX_FourCC("TvV2"), chunk.get()));
    // Asking for the data before its size is refused.
    EXPECT_EQ(AAX_ERROR_INCORRECT_CHUNK_SIZE, iface->GetChunk(cDefaultChunkID, chunk.get()));

    // Another chunk ID is refused and changes nothing.
    auto saved = SaveElck();
    iface->UpdateParameterNormalizedValue("0", 0.1, AAX_eUpdateSource_Parameter);
    EXPECT_EQ(AAX_ERROR_INVALID_CHUNK_ID, iface->SetChunk(AAX_FourCC("TvV2"), saved.get()));
    EXPECT_NEAR(0.1, Normalized("0"), 1e-6);
}

TEST_F(EffectFixture, RestoreGoesThroughTheSettersAndSkipsBypassAndComparisonsGoValueByValue)
{
    Start();
    iface->UpdateParameterNormalizedValue("0", 0.3, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("1", 1.0, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("2", 0.0, AAX_eUpdateSource_Parameter);
    auto saved = SaveElck();

    iface->UpdateParameterNormalizedValue("0", 0.9, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("1", 0.0, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("2", 1.0, AAX_eUpdateSource_Parameter);
    iface->GenerateCoefficients();
    host.setRequests.clear();
    host.posts.clear();

    EXPECT_EQ(AAX_SUCCESS, iface->SetChunk(cDefaultChunkID, saved.get()));
    EXPECT_NEAR(0.3, Normalized("0"), 1e-6);
    EXPECT_DOUBLE_EQ(1.0, Normalized("1"));
    EXPECT_DOUBLE_EQ(0.0, Normalized("2"));
    // Each value reached the host as a set-value request, and will reach
    // the algorithm at the next dispatch.
    EXPECT_EQ(3u, host.setRequests.size());
    iface->GenerateCoefficients();
    EXPECT_EQ(1u, host.posts.size());

    // A chunk carrying a bypass value does not touch the bypass.
    AAX_CChunkDataParser parser;
    parser.AddInt32("MasterBypassID", 1);
    auto withBypass = MakeChunk(parser.GetChunkDataSize());
    parser.GetChunkData(withBypass.get());
    EXPECT_EQ(AAX_SUCCESS, iface->SetChunk(cDefaultChunkID, withBypass.get()));
    EXPECT_DOUBLE_EQ(0.0, Normalized("MasterBypassID"));
    EXPECT_NEAR(0.3, Normalized("0"), 1e-6);  // absent values stay

    // CompareActiveChunk compares value by value.
    saved = SaveElck();
    AAX_CBoolean equal = 0;
    EXPECT_EQ(AAX_SUCCESS, iface->CompareActiveChunk(saved.get(), &equal));
    EXPECT_EQ(1, equal);

    iface->UpdateParameterNormalizedValue("2", 1.0, AAX_eUpdateSource_Parameter);
    EXPECT_EQ(AAX_SUCCESS, iface->CompareActiveChunk(saved.get(), &equal));
    EXPECT_EQ(0, equal);

    // The bypass is not part of the comparison.
    iface->UpdateParameterNormalizedValue("2", 0.0, AAX_eUpdateSource_Parameter);
    iface->UpdateParameterNormalizedValue("MasterBypassID", 1.0, AAX_eUpdateSource_Parameter);
    EXPECT_EQ(AAX_SUCCESS, iface->CompareActiveChunk(saved.get(), &equal));
    EXPECT_EQ(1, equal);

    // Any other chunk is reported equal.
    saved->fChunkID = AAX_FourCC("TvV2");
    iface->UpdateParameterNormalizedValue("0", 0.0, AAX_eUpdateSource_Parameter);
    equal = 0;
    EXPECT_EQ(AAX_SUCCESS, iface->CompareActiveChunk(saved.get(), &equal));
    EXPECT_EQ(1, equal);
}

TEST_F(EffectFixture, PreviewNotificationSetsThePreviewSwitch)
{
    Start(/*withPreview=*/true);
    const int32_t five = 5, zero = 0;
    EXPECT_EQ(AAX_SUCCESS, iface->NotificationReceived(AAX_eNotificationEvent_ASPreviewState, &five, 4));
    EXPECT_DOUBLE_EQ(1.0, Normalized("PreviewID"));
    EXPECT_EQ(AAX_SUCCESS, iface->NotificationReceived(AAX_eNotificationEvent_ASPreviewState, &zero, 4));
    EXPECT_DOUBLE_EQ(0.0, Normalized("PreviewID"));
    EXPECT_EQ(AAX_SUCCESS, iface->NotificationReceived(AAX_FourCC("abcd"), &five, 4));
    EXPECT_EQ(AAX_SUCCESS, iface->NotificationReceived(AAX_eNotificationEvent_ASPreviewState, nullptr, 0));
    EXPECT_DOUBLE_EQ(0.0, Normalized("PreviewID"));

    // Released without Uninitialize: TearDown still finds every reference
    // given back and the object count as before.
    EXPECT_EQ(0u, iface->Release());
    iface = nullptr;
}
