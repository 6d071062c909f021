// What leak tracking does where there is no memory for its own tables: the linker sends the calls of the
// library's objects here.

#include "leakanalyzer/leakrecords.h"
#include "leakrecorder.h"

#include <cstdint>

namespace {

std::size_t s_mostBytes = SIZE_MAX; // larger blocks cannot be had
const void *s_watched = nullptr;
std::size_t s_pendingAtFree = 0; // releases, when the watched block was freed

} // namespace

extern "C" {
void *__real_malloc(std::size_t size);
void *__real_calloc(std::size_t count, std::size_t size);
char *__real_strdup(const char *text);
void *__wrap_malloc(std::size_t size);
void *__wrap_calloc(std::size_t count, std::size_t size);
char *__wrap_strdup(const char *text);
void __real_free(void *block);
void __wrap_free(void *block);

void *__wrap_malloc(std::size_t size)
{
    return size > s_mostBytes ? nullptr : __real_malloc(size);
}

void *__wrap_calloc(std::size_t count, std::size_t size)
{
    return count * size > s_mostBytes ? nullptr : __real_calloc(count, size);
}

char *__wrap_strdup(const char *text)
{
    return s_mostBytes == 0 ? nullptr : __real_strdup(text);
}

void __wrap_free(void *block)
{
    if (block != nullptr && block == s_watched)
        s_pendingAtFree = Zorvan::analysis::leakRecords().releases().count();
    __real_free(block);
}
}

namespace Zorvan::test {
namespace {

using namespace analysis;

/// Memory is short for a scope.
class Shortage
{
public:
    explicit Shortage(std::size_t mostBytes) { s_mostBytes = mostBytes; }
    ~Shortage() { s_mostBytes = SIZE_MAX; }
    Shortage(const Shortage &) = delete;
    Shortage &operator=(const Shortage &) = delete;
};

TEST(Shortage, queueThatCannotGrowKeepsItsEntries)
{
    ReleaseQueue queue(2);
    BlockKey keys[4] = {};
    EXPECT_TRUE(queue.push(7));
    EXPECT_TRUE(queue.push(1));
    EXPECT_EQ(queue.take(keys, 1), 1U); // the oldest entry stands at the end of the ring now
    EXPECT_TRUE(queue.push(2));
    {
        const Shortage shortage(0);
        EXPECT_FALSE(queue.push(7));
    }
    EXPECT_TRUE(queue.push(3));
    EXPECT_EQ(queue.take(keys, 4), 3U);
    EXPECT_EQ(std::vector<BlockKey>(keys, keys + 4), (std::vector<BlockKey>{1, 2, 3, 0}));
}

TEST(Shortage, tableThatCannotGrowStaysQuickAndKnowsItsBlocks)
{
    LiveBlocks blocks;
    const auto enter = [&blocks](BlockKey key) { return blocks.enter({key * 16 + 1, "a.cpp", 1, 1, 0}); };
    ASSERT_TRUE(enter(1)); // 1,024 places
    {
        const Shortage shortage(0);
        for (BlockKey key = 2; key <= 960; ++key)
            ASSERT_TRUE(enter(key));
        EXPECT_FALSE(enter(961));
        EXPECT_EQ(blocks.find(961 * 16 + 1), nullptr);
        EXPECT_EQ(blocks.count(), 960U);
    }
    EXPECT_TRUE(enter(961));
    for (BlockKey key = 1; key <= 961; ++key)
        ASSERT_NE(blocks.find(key * 16 + 1), nullptr);
}

TEST_F(LeakTest, shortageLosesNoRelease)
{
    void *const first = allocate(100);
    void *const last = allocate(50);
    freeBlock(first);
    constexpr BlockKey unknown = 2;
    while (leakRecords().releases().count() < ReleaseQueue::firstCapacity)
        leakRecords().release(unknown);
    {
        const Shortage shortage(0);
        freeBlock(last);
    }
    EXPECT_EQ(leakRecords().releases().count(), 0U);
    EXPECT_EQ(trackedMemoryUsage(), 0);
}

TEST_F(LeakTest, releaseIsRecordedBeforeAnotherThreadCanGetTheAddress)
{
    void *const block = allocate(10);
    s_watched = block;
    freeBlock(block);
    EXPECT_EQ(s_pendingAtFree, 1U);
}

TEST_F(LeakTest, shortageIsToldInPlaceOfTheLeaks)
{
    LeakRecorder recorder;
    for (int i = 0; i < 50; ++i)
        leak(8);
    const Lines complete = recorder.report();
    {
        const Shortage shortage(1000);
        const Lines report = recorder.report();
        EXPECT_EQ(report.front(),
                  "------------------------------ not enough memory to list the 50 blocks that are alive\n");
        EXPECT_EQ(Lines(report.begin() + 1, report.end()), Lines(complete.begin() + 1, complete.end()));
    }
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 8 x 50"});
}

TEST_F(LeakTest, shortageHidesANameOnlyWhileItLasts)
{
    LeakRecorder recorder;
    leak(8); // makes the tables
    static const char file[] = "name.cpp";
    {
        const Shortage shortage(0);
        EXPECT_EQ(allocate(16, file), nullptr);
    }
    leak(24, file);
    EXPECT_EQ(recorder.leaks("name.cpp"), Lines{"name.cpp:1 24 x 1"});
    EXPECT_EQ(recorder.leaks("unknown"), Lines{"unknown:1 16 x 1"});
}

} // namespace
} // namespace Zorvan::test
