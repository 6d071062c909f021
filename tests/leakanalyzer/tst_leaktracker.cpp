#include "leakanalyzer/leakrecords.h"
#include "leakrecorder.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

// The sanitizers' own malloc() would end the program where others return null.
extern "C" const char *__asan_default_options()
{
    return "allocator_may_return_null=1";
}

extern "C" const char *__tsan_default_options()
{
    return "allocator_may_return_null=1";
}

namespace Zorvan::test {
namespace {

using analysis::freeBlock;
using analysis::trackedMemoryUsage;

const char *const noLeaks = "------------------------------ no memory leaks in tracked code found\n";

Lines statistics(int averageBytes, int averageBlocks, int peakBytes, int peakBlocks, int requests,
                 int releases)
{
    const auto number = [](int value) { return std::to_string(value); };
    const std::string stars = "****************************** ";
    return {stars + " avg memory usage was " + number(averageBytes) + " bytes\n",
            stars + " avg memory usage was " + number(averageBlocks) + " blocks\n",
            stars + "peak memory usage was " + number(peakBytes) + " bytes\n",
            stars + "peak memory usage was " + number(peakBlocks) + " blocks\n",
            stars + "peak alloc fifo usage was " + number(requests) + " requests\n",
            stars + "peak del fifo usage was " + number(releases) + " requests\n"};
}

Lines lastSix(const Lines &report)
{
    return {report.end() - std::min<std::ptrdiff_t>(6, static_cast<std::ptrdiff_t>(report.size())),
            report.end()};
}

TEST(LeakTracking, isSilentAndOnlyAllocatesWithoutARunningAnalyzer)
{
    LeakRecorder recorder;
    analysis::setMemoryTracking(1);
    void *const block = analysis::reallocate(allocate(10), 20, "data.cpp", 1);
    std::memset(block, 1, 20);
    EXPECT_EQ(analysis::memoryTrackingEnabled(1), 0);
    EXPECT_EQ(getLowlevelIntegerProperty(4, 7), 1);
    EXPECT_EQ(trackedMemoryUsage(), 0);
    analysis::clearLeaks();
    EXPECT_EQ(recorder.report(), Lines());
    freeBlock(block);
}

TEST(LeakTracking, beginsWhenItIsSwitchedOn)
{
    startAnalyzer();
    LeakRecorder recorder;
    freeBlock(allocate(10));
    Lines expected = statistics(0, 0, 0, 0, 0, 0);
    expected.insert(expected.begin(), noLeaks);
    EXPECT_EQ(recorder.report(), expected);
    EXPECT_EQ(analysis::memoryTrackingEnabled(-1), 0);
    EXPECT_EQ(analysis::memoryTrackingEnabled(2), 1);
    EXPECT_EQ(getLowlevelIntegerProperty(4, 7), 2);
    void *const block = allocate(10);
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 10 x 1"});
    EXPECT_EQ(analysis::memoryTrackingEnabled(0), 0);
    freeBlock(block);
}

TEST_F(LeakTest, blocksAreGroupedByPositionAndSize)
{
    LeakRecorder recorder;
    static const char names[][16] = {"src/a.cpp", "src\\data.cpp", "x=b.cpp", "src/c.h"}; // in key order
    for (int i = 0; i < 3; ++i)
        leak(16, names[1], 7);
    leak(17, names[1], 7);
    leak(16, names[1], 6);
    leak(16, names[0], 9);
    leak(1, names[2], 1);
    Lines leaks = recorder.leaks();
    EXPECT_EQ(leaks.size(), 5U);
    const auto of = [](Lines lines, const char *source) {
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [source](const std::string &line) { return line.rfind(source, 0) != 0; }),
                    lines.end());
        return lines;
    };
    EXPECT_EQ(of(leaks, "src\\data.cpp"),
              (Lines{"src\\data.cpp:6 16 x 1", "src\\data.cpp:7 16 x 3", "src\\data.cpp:7 17 x 1"}));
    // The name has to occur in the filter, not the other way round.
    EXPECT_EQ(of(recorder.leaks("data.cpp"), "src").size(), 4U);
    EXPECT_EQ(recorder.leaks("b.cpp c.h"), Lines{"x=b.cpp:1 1 x 1"});
    EXPECT_EQ(recorder.leaks("data"), Lines());
    EXPECT_EQ(recorder.report("data").size(), 6U);
    EXPECT_EQ(recorder.leaks("").size(), 5U);
}

TEST_F(LeakTest, countersAreExact)
{
    LeakRecorder recorder;
    void *const hundred = allocate(100);
    leak(50);
    EXPECT_EQ(trackedMemoryUsage(), 150);
    EXPECT_EQ(lastSix(recorder.report()), statistics(100, 1, 150, 2, 2, 0));
    freeBlock(hundred);
    EXPECT_EQ(trackedMemoryUsage(), 150); // until the next allocation
    leak(30);
    EXPECT_EQ(trackedMemoryUsage(), 80);
    EXPECT_EQ(lastSix(recorder.report()), statistics(90, 1, 150, 2, 2, 1));
    void *const plain = std::malloc(7);
    freeBlock(plain);
    EXPECT_EQ(lastSix(recorder.report()), statistics(90, 1, 150, 2, 2, 1));
}

constexpr analysis::BlockKey noBlock = 16; // no memory behind it, nor behind the next few

void enter(analysis::BlockKey key, std::size_t size)
{
    const analysis::AnalyzerTurn turn;
    analysis::leakRecords().enter(key, size, "data.cpp", 1);
}

TEST_F(LeakTest, addressThatIsEnteredAgainKeepsItsSizeUntilAsManyReleases)
{
    LeakRecorder recorder;
    enter(noBlock, 100);
    enter(noBlock, 50);
    for (const int bytes : {150, 50}) {
        EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 100 x 1"});
        EXPECT_EQ(trackedMemoryUsage(), bytes);
        analysis::leakRecords().release(noBlock);
    }
    EXPECT_EQ(recorder.report().front(), noLeaks);
    EXPECT_EQ(trackedMemoryUsage(), -50);
}

TEST_F(LeakTest, countersWrapAroundAt32Bits)
{
    LeakRecorder recorder;
    for (analysis::BlockKey i = 0; i < 5; ++i)
        enter(noBlock + i, 1'000'000'000);
    EXPECT_EQ(trackedMemoryUsage(), 705'032'704);
    EXPECT_EQ(lastSix(recorder.report()), statistics(273'153'616, 4, 2'000'000'000, 5, 2, 0));
    for (analysis::BlockKey i = 0; i < 5; ++i)
        analysis::leakRecords().release(noBlock + i);
    EXPECT_EQ(recorder.report().front(), noLeaks);
    EXPECT_EQ(trackedMemoryUsage(), 0);
    analysis::clearLeaks();
    enter(noBlock, UINT32_MAX); // -1: half of that rounds towards zero
    EXPECT_EQ(lastSix(recorder.report()), statistics(0, 0, 0, 1, 1, 0));
}

TEST_F(LeakTest, clearForgetsTheBlocksButNotTheirSum)
{
    LeakRecorder recorder;
    void *const block = allocate(100);
    freeBlock(allocate(7)); // not worked off before its block is forgotten
    analysis::clearLeaks();
    Lines expected = statistics(0, 0, 0, 0, 0, 0);
    expected.insert(expected.begin(), noLeaks);
    EXPECT_EQ(recorder.report(), expected);
    freeBlock(block);
    leak(10);
    EXPECT_EQ(trackedMemoryUsage(), 117);
    EXPECT_EQ(lastSix(recorder.report()), statistics(58, 1, 117, 3, 1, 1));
}

TEST_F(LeakTest, whatHappensWhileTrackingIsOffIsNotSeen)
{
    LeakRecorder recorder;
    void *const early = allocate(100);
    void *const missed = allocate(10, "missed.cpp");
    analysis::setMemoryTracking(1); // it is on already
    EXPECT_EQ(trackedMemoryUsage(), 110);
    analysis::setMemoryTracking(0);
    freeBlock(missed);
    void *const unseen = allocate(1000);
    EXPECT_EQ(trackedMemoryUsage(), 110);
    analysis::setMemoryTracking(1);
    EXPECT_EQ(trackedMemoryUsage(), 0);
    freeBlock(early);
    freeBlock(unseen);
    EXPECT_EQ(recorder.leaks(), Lines{"missed.cpp:1 10 x 1"});
    EXPECT_EQ(trackedMemoryUsage(), -100);
    EXPECT_EQ(lastSix(recorder.report()), statistics(0, 0, 0, 0, 2, 2));
}

TEST_F(LeakTest, releasesWithoutAnAllocationAreNotLost)
{
    LeakRecorder recorder;
    constexpr std::size_t count = 300'000;
    std::vector<void *> blocks(count);
    for (void *&block : blocks)
        block = allocate(16);
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 16 x 300000"});
    for (void *const block : blocks)
        freeBlock(block);
    EXPECT_EQ(recorder.report().front(), noLeaks);
    EXPECT_EQ(trackedMemoryUsage(), 0);
    EXPECT_EQ(recorder.report().back(), statistics(0, 0, 0, 0, 0, count).back());
}

TEST_F(LeakTest, reallocationKeepsTheContentThatFitsAndFreesTheOldBlock)
{
    LeakRecorder recorder;
    auto *block = static_cast<char *>(analysis::reallocate(nullptr, 8, "data.cpp", 1));
    std::memcpy(block, "content", 8);
    block = static_cast<char *>(analysis::reallocate(block, 1'000'000, "data.cpp", 2));
    EXPECT_STREQ(block, "content");
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:2 1000000 x 1"});
    block = static_cast<char *>(analysis::reallocate(block, 4, "data.cpp", 3));
    EXPECT_EQ(std::memcmp(block, "cont", 4), 0);
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:3 4 x 1"});
    freeBlock(block);
    EXPECT_EQ(recorder.report().front(), noLeaks);
}

TEST_F(LeakTest, failedAllocationsGiveNullAndKeepTheOldBlock)
{
    LeakRecorder recorder;
    const std::size_t tooMuch = SIZE_MAX / 2 - 14; // ends in 0x7ffffff1 when cut to 32 bits
    auto *const block = static_cast<char *>(allocate(8));
    std::memcpy(block, "content", 8);
    EXPECT_EQ(analysis::allocateZeroed(tooMuch, nullptr, 1), nullptr);
    EXPECT_EQ(analysis::allocate(tooMuch, nullptr, 1, true), nullptr);
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 8 x 1"});
    EXPECT_EQ(analysis::reallocate(block, tooMuch, "huge.cpp", 1), nullptr);
    EXPECT_STREQ(block, "content");
    EXPECT_EQ(recorder.leaks("huge.cpp"), Lines{"huge.cpp:1 -15 x 1"}); // recorded like any block
    freeBlock(nullptr);
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 8 x 1"});
    freeBlock(block);
}

TEST_F(LeakTest, zeroedBlocksAreZeroAndThoseWithoutAFileAreNotRecorded)
{
    LeakRecorder recorder;
    void *const used = std::memset(std::malloc(64), 1, 64);
    std::free(used);
    auto *const block = static_cast<char *>(analysis::allocateZeroed(64, nullptr, 1));
    EXPECT_EQ(std::count(block, block + 64, 0), 64);
    EXPECT_EQ(recorder.report().front(), noLeaks);
    freeBlock(block);
}

TEST_F(LeakTest, handlerMayCallBack)
{
    LeakRecorder recorder;
    void *const block = allocate(10);
    recorder.onText = [] {
        freeBlock(allocate(20, "handler.cpp"));
        EXPECT_GE(trackedMemoryUsage(), 10);
        analysis::setMemoryTracking(1);
    };
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 10 x 1"});
    freeBlock(block);
    recorder.onText = analysis::clearLeaks;
    EXPECT_EQ(recorder.report().size(), 7U);
}

} // namespace
} // namespace Zorvan::test
