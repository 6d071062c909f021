// A host that sends its global operators new and delete through the analyzer.

#include "leakanalyzer/leakrecords.h"
#include "leakrecorder.h"

#include <zorvan/analysis.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

std::atomic<int> s_made{0};
std::atomic<int> s_deleted{0};
std::atomic<void *> s_lastDeleted{nullptr};
std::atomic<std::size_t> s_pendingAtDelete{0}; // releases
std::atomic<bool> s_asksForNew{false};

/// In front of each block: malloc() crashes on such a size when it is asked about the block.
struct Header
{
    std::size_t sizes[2] = {0x4040404040404040, 0x4040404040404040};
};

} // namespace

void *operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    ++s_made;
    void *const memory = Zorvan::analysis::allocate(size + sizeof(Header), "operator new", 1, s_asksForNew);
    return memory == nullptr ? nullptr : new (memory) Header + 1;
}

void *operator new(std::size_t size)
{
    if (void *const block = operator new(size, std::nothrow))
        return block;
    throw std::bad_alloc();
}

void operator delete(void *block) noexcept
{
    ++s_deleted;
    s_lastDeleted = block;
    if (Zorvan::analysis::isRunning())
        s_pendingAtDelete = Zorvan::analysis::leakRecords().releases().count();
    if (block != nullptr)
        xfree(static_cast<Header *>(block) - 1, "operator delete", 2);
}

void operator delete(void *block, std::size_t) noexcept
{
    operator delete(block);
}

namespace Zorvan::test {
namespace {

TEST_F(LeakTest, analyzerDoesNotTrackItself)
{
    LeakRecorder recorder;
    recorder.report(); // its lists have their size now
    analysis::clearLeaks();
    static char names[500][8]; // a name of its own each, which the analyzer copies
    {
        std::vector<void *> blocks;
        blocks.reserve(500);
        for (char(&name)[8] : names) {
            std::snprintf(name, sizeof name, "%d", static_cast<int>(blocks.size()));
            blocks.push_back(allocate(8, name));
        }
        const int before = analysis::trackedMemoryUsage();
        leak(24, names[0]);
        EXPECT_EQ(analysis::trackedMemoryUsage(), before + 24);
        EXPECT_EQ(recorder.leaks("499"),
                  (Lines{"4:1 8 x 1", "9:1 8 x 1", "49:1 8 x 1", "99:1 8 x 1", "499:1 8 x 1"}));
        std::for_each(blocks.begin(), blocks.end(), analysis::freeBlock);
    }
    EXPECT_EQ(recorder.leaks("0"), Lines{"0:1 24 x 1"});
}

TEST_F(LeakTest, blocksOfOperatorNewGoBackToOperatorDelete)
{
    LeakRecorder recorder;
    static const char file[] = "new.cpp";
    analysis::freeBlock(analysis::allocate(8, file, 0, true)); // the first one makes tables
    for (const int state : {1, 0}) { // tracked or not
        analysis::setMemoryTracking(state);
        const int made = s_made;
        void *block = analysis::allocate(8, file, 1, true);
        EXPECT_EQ(s_made, made + 1);
        EXPECT_EQ(recorder.leaks("new.cpp"), state == 1 ? Lines{"new.cpp:1 8 x 1"} : Lines());
        std::memcpy(block, "content", 8);
        void *const old = block;
        const int deleted = s_deleted;
        block = analysis::reallocate(block, 100, file, 2);
        EXPECT_STREQ(static_cast<char *>(block), "content");
        EXPECT_EQ(s_deleted, deleted + 1);
        EXPECT_EQ(s_lastDeleted, old);
        analysis::freeBlock(block); // came from malloc()
        EXPECT_EQ(s_deleted, deleted + 1);
    }
    analysis::setMemoryTracking(1);
    EXPECT_EQ(recorder.leaks("new.cpp"), Lines());
}

TEST_F(LeakTest, releaseIsRecordedOnceAndBeforeOperatorDelete)
{
    void *const block = analysis::allocate(8, "new.cpp", 1, true); // works off the releases
    analysis::freeBlock(block);
    EXPECT_EQ(s_lastDeleted, block);
    EXPECT_EQ(s_pendingAtDelete, 1U);
    EXPECT_EQ(analysis::leakRecords().releases().count(), 1U);
}

TEST_F(LeakTest, operatorNewMayAskForBlocksOfOperatorNew)
{
    s_asksForNew = true;
    const int before = analysis::trackedMemoryUsage();
    const int made = s_made;
    const int deleted = s_deleted;
    void *const block = operator new(100);
    EXPECT_EQ(s_made, made + 2);
    EXPECT_EQ(analysis::trackedMemoryUsage(), before + 100 + static_cast<int>(sizeof(Header)));
    operator delete(block);
    EXPECT_EQ(s_deleted, deleted + 2);
    leak(24);
    EXPECT_EQ(analysis::trackedMemoryUsage(), before + 24);
    s_asksForNew = false;
}

} // namespace
} // namespace Zorvan::test
