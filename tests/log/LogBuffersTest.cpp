// Ring buffers and writer thread, driven directly. A long writer period keeps
// the writer asleep after its first pass, so ring positions are deterministic.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <sstream>
#include <thread>
#include <vector>

#include "LogTestSupport.h"
#include "logger/CLogBuffers.h"

namespace {

constexpr std::chrono::milliseconds kAsleep(60000);

std::string AddressOf(const CLogBuffers& buffers)
{
    std::ostringstream text;
    text << static_cast<const void*>(&buffers);
    return text.str();
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

std::string Pattern(size_t length)
{
    std::string text(length, ' ');
    for (size_t i = 0; i < length; ++i)
        text[i] = static_cast<char>('a' + (i * 7 + i / 26) % 26);
    return text;
}

}  // namespace

TEST(LogBuffers, LongLineWrapsAroundTheRingAndComesOutInOrder)
{
    CoutCapture capture;
    const std::string first(5000, '1');
    const std::string wrapped = Pattern(9999);
    {
        CLogBuffers buffers(kAsleep);
        Write(buffers, first);
        buffers.StopWorkingThread();
        EXPECT_EQ(buffers.GetRing(0).mReadPos.load(), 5000);

        Write(buffers, wrapped);
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 4999);
        const char* ring = buffers.GetRingData(0);
        EXPECT_EQ(0, std::memcmp(ring + 5000, wrapped.data(), 5000));
        EXPECT_EQ(0, std::memcmp(ring, wrapped.data() + 5000, 4999));
    }
    const std::string text = capture.text();
    EXPECT_NE(text.find(first), std::string::npos);
    EXPECT_NE(text.find(wrapped), std::string::npos);
    EXPECT_EQ(text.find(" [WRITE]"), std::string::npos);
}

TEST(LogBuffers, ExactlyFullRingThenNextLineStartsAtRingStart)
{
    CoutCapture capture;
    std::string blocks;
    {
        CLogBuffers buffers(kAsleep);
        for (char c : {'A', 'B', 'C', 'D'}) {
            const std::string block(2500, c);
            Write(buffers, block);
            blocks += block;
        }
        // Every line of one thread lands in the same, lowest ring.
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 10000);
        EXPECT_FALSE(buffers.GetRing(1).mInUse.load());

        buffers.StopWorkingThread();
        EXPECT_EQ(buffers.GetRing(0).mReadPos.load(), 10000);
        Write(buffers, "tail line\n");
        EXPECT_EQ(buffers.GetRing(0).mWritePos.load(), 10);
        EXPECT_EQ(0, std::memcmp(buffers.GetRingData(0), "tail line\n", 10));
    }
    const std::string text = capture.text();
    const size_t at = text.find(blocks);
    ASSERT_NE(at, std::string::npos);
    EXPECT_NE(text.find("tail line\n", at + blocks.size()), std::string::npos);
    EXPECT_EQ(text.find(" [WRITE]"), std::string::npos);
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
    EXPECT_NE(text.find(" [WRITE] Writing too fast, no time to read ! Msg: " + newer + "\n"), std::string::npos);
    // The reader still stood at 0: it gets the 2,000 wrapped bytes, the rest is lost.
    const std::string drained = "LOG - STOP THREAD asked " + address + "\n" + std::string(2000, 'y') +
                                "LOG FLUSH DONE " + address + "\n";
    EXPECT_NE(text.find(drained), std::string::npos);
    EXPECT_EQ(text.find(older), std::string::npos);
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
    EXPECT_NE(text.find(warning + "late one\n\n" + warning + "late two\n\n"), std::string::npos);
    EXPECT_NE(text.find(warning + "main thread\n\n"), std::string::npos);
    for (int i = 0; i < CLogBuffers::kRingCount; ++i)
        EXPECT_EQ(CountOccurrences(text, "owner " + std::to_string(i) + "\n"), 1u) << i;
}

TEST(LogBuffers, StopFlushesThenNextLineRestartsTheWriter)
{
    CoutCapture capture;
    std::string address;
    {
        CLogBuffers buffers(kAsleep);
        address = AddressOf(buffers);
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

TEST(LogBuffers, DestructionWritesOutEverythingQueued)
{
    CoutCapture capture;
    constexpr int kThreads = 3;
    constexpr int kLines = 40;
    {
        CLogBuffers buffers(kAsleep);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&buffers, t] {
                for (int i = 0; i < kLines; ++i)
                    Write(buffers, "t" + std::to_string(t) + " line " + std::to_string(i) + "\n");
            });
        for (auto& thread : threads)
            thread.join();
    }
    const std::string text = capture.text();
    for (int t = 0; t < kThreads; ++t) {
        size_t previous = 0;
        for (int i = 0; i < kLines; ++i) {
            const std::string line = "t" + std::to_string(t) + " line " + std::to_string(i) + "\n";
            const size_t at = text.find(line);
            ASSERT_NE(at, std::string::npos) << line;
            EXPECT_GE(at, previous) << line;
            previous = at;
        }
    }
}

TEST(LogBuffers, IgnoresEmptyAndNullData)
{
    CoutCapture capture;
    {
        CLogBuffers buffers(kAsleep);
        buffers.WriteDataInBuffer(nullptr, 10);
        buffers.WriteDataInBuffer("abc", 0);
        buffers.WriteDataInBuffer("abc", -5);
        EXPECT_FALSE(buffers.GetRing(0).mInUse.load());
    }
    EXPECT_EQ(capture.text(), "");
}
