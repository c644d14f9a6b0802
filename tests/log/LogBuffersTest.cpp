// Ring buffers and writer thread, driven directly. A long writer period keeps
// the writer asleep after its first pass, so ring positions are deterministic.
#include <gmock/gmock.h>

#include <cstring>
#include <thread>

#include "LogTestSupport.h"
#include "logger/CLogBuffers.h"

using ::testing::HasSubstr;
using ::testing::Not;

namespace {

constexpr std::chrono::milliseconds kAsleep(60000);

std::string AddressOf(const CLogBuffers& buffers)
{
    return (std::ostringstream() << static_cast<const void*>(&buffers)).str();
}

void Write(CLogBuffers& buffers, const std::string& text)
{
    buffers.WriteDataInBuffer(text.data(), static_cast<int32_t>(text.size()));
}

// Starts the writer and waits until its first pass is over: from then on
// nothing is drained before the next stop.
void StartAndSettle(CLogBuffers& buffers)
{
    const uint64_t before = buffers.GetDrainPasses();
    buffers.StartWorkingThread();
    while (buffers.GetDrainPasses() == before)
        std::this_thread::yield();
}

}  // namespace

// A 9,999-byte line after 5,000 drained bytes wraps around the ring; an
// exactly full ring lets the next line start at the ring's start.
TEST(LogBuffers, WrapAroundAndExactlyFullRing)
{
    CoutCapture capture;
    std::string wrapped(9999, ' ');
    for (size_t i = 0; i < wrapped.size(); ++i)
        wrapped[i] = static_cast<char>('a' + (i * 7 + i / 26) % 26);
    std::string blocks;
    {
        CLogBuffers buffers(kAsleep);
        Write(buffers, std::string(5000, '1'));
        buffers.StopWorkingThread();
        Write(buffers, wrapped);
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 4999);
        const char* ring = buffers.GetRingData(0);
        EXPECT_EQ(0, std::memcmp(ring + 5000, wrapped.data(), 5000));
        EXPECT_EQ(0, std::memcmp(ring, wrapped.data() + 5000, 4999));
    }
    {
        CLogBuffers buffers(kAsleep);
        for (char c : {'A', 'B', 'C', 'D'}) {
            Write(buffers, std::string(2500, c));
            blocks += std::string(2500, c);
        }
        // Every line of one thread lands in the same, lowest ring.
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 10000);
        EXPECT_FALSE(buffers.GetRing(1).mInUse.load());
        buffers.StopWorkingThread();
        Write(buffers, "tail line\n");
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 10);
    }
    const std::string text = capture.text();
    const size_t full = text.find(blocks, text.find(wrapped));
    ASSERT_NE(full, std::string::npos);
    EXPECT_NE(text.find("tail line\n", full + blocks.size()), std::string::npos);
    EXPECT_THAT(text, Not(HasSubstr(" [WRITE]")));
}

TEST(LogBuffers, OverrunWarnsAndKeepsOnlyTheNewestText)
{
    CoutCapture capture;
    std::string address;
    const std::string older(6000, 'x');
    const std::string newer(6000, 'y');
    {
        CLogBuffers buffers(kAsleep);
        address = AddressOf(buffers);
        StartAndSettle(buffers);
        Write(buffers, older);
        Write(buffers, newer);
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 2000);
    }
    const std::string text = capture.text();
    EXPECT_THAT(text, HasSubstr(" [WRITE] Writing too fast, no time to read ! Msg: " + newer + "\n"));
    // The reader still stood at 0: it gets the 2,000 wrapped bytes, the rest is lost.
    EXPECT_THAT(text, HasSubstr("LOG - STOP THREAD asked " + address + "\n" + std::string(2000, 'y') +
                                "LOG FLUSH DONE " + address + "\n"));
    EXPECT_THAT(text, Not(HasSubstr(older)));
}

TEST(LogBuffers, TwentyFirstThreadWritesSynchronouslyEvenAfterOthersEnded)
{
    CoutCapture capture;
    {
        CLogBuffers buffers(kAsleep);
        for (int i = 0; i < CLogBuffers::kRingCount; ++i)
            std::thread([&buffers, i] { Write(buffers, "owner " + std::to_string(i) + "\n"); }).join();
        for (int i = 0; i < CLogBuffers::kRingCount; ++i)
            EXPECT_TRUE(buffers.GetRing(i).mInUse.load()) << i;
        std::thread([&buffers] {
            Write(buffers, "late one\n");
            Write(buffers, "late two\n");
        }).join();
        Write(buffers, "main thread\n");
    }
    const std::string text = capture.text();
    const std::string warning = "WARNING : TOO MANY THREADS ARE WORKING TOGETHER- LOG CAN BE CORRUPTED.\n";
    EXPECT_EQ(CountOccurrences(text, warning), 3u);
    EXPECT_THAT(text, HasSubstr(warning + "late one\n\n" + warning + "late two\n\n"));
    EXPECT_THAT(text, HasSubstr(warning + "main thread\n\n"));
    for (int i = 0; i < CLogBuffers::kRingCount; ++i)
        EXPECT_EQ(CountOccurrences(text, "owner " + std::to_string(i) + "\n"), 1u) << i;
}

// Empty and null data is ignored; a stop drains and prints the flush marks;
// the next start brings the writer back.
TEST(LogBuffers, StopFlushesThenNextLineRestartsTheWriter)
{
    CoutCapture capture;
    std::string address;
    {
        CLogBuffers buffers(kAsleep);
        address = AddressOf(buffers);
        buffers.WriteDataInBuffer(nullptr, 10);
        buffers.WriteDataInBuffer("abc", 0);
        buffers.WriteDataInBuffer("abc", -5);
        EXPECT_FALSE(buffers.GetRing(0).mInUse.load());
        StartAndSettle(buffers);
        Write(buffers, "one\n");
        buffers.StopWorkingThread();
        EXPECT_FALSE(buffers.IsWriterRunning());
        buffers.StopWorkingThread();  // no writer: nothing happens
        StartAndSettle(buffers);
        Write(buffers, "two\n");
        EXPECT_TRUE(buffers.IsWriterRunning());
    }
    const std::string start = "LOG - START THREAD " + address + "\n";
    const std::string stop = "LOG - STOP THREAD asked " + address + "\n";
    const std::string done = "LOG FLUSH DONE " + address + "\n";
    EXPECT_EQ(capture.text(), start + stop + "one\n" + done + start + stop + "two\n" + done);
}
