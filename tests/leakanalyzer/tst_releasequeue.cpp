#include "leakanalyzer/liveblocks.h"
#include "leakanalyzer/releasequeue.h"

#include <deque>
#include <gtest/gtest.h>
#include <random>
#include <unordered_map>
#include <vector>

namespace Zorvan::analysis {
namespace {

TEST(ReleaseQueue, keepsAllEntriesInOrderAndTheirPeakWhereverItWrapsAndGrows)
{
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        ReleaseQueue queue(1 + random() % 9);
        std::deque<BlockKey> expected;
        std::size_t peak = 0;
        bool isRead = false;
        BlockKey next = 1;
        for (int step = 0; step < 60; ++step) {
            for (unsigned pushes = random() % 8; pushes > 0; --pushes) {
                ASSERT_TRUE(queue.push(next));
                expected.push_back(next++);
                peak = std::max(peak, expected.size() + (isRead ? 0 : 1));
            }
            BlockKey taken[10];
            const std::size_t count = queue.take(taken, random() % 10);
            isRead = true;
            ASSERT_LE(count, expected.size());
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(taken[i], expected.front());
                expected.pop_front();
            }
            ASSERT_EQ(queue.count(), expected.size());
        }
        ASSERT_EQ(queue.peak(), peak);
        queue.resetPeak();
        ASSERT_EQ(queue.peak(), 0U);
    }
}

TEST(LiveBlocks, knowWhatAnOrdinaryMapKnows)
{
    std::mt19937_64 random(2);
    LiveBlocks blocks;
    std::unordered_map<BlockKey, LiveBlock> expected;
    std::vector<BlockKey> keys;
    // Neighbours, pages, and places that are far apart by powers of two: what allocators give away.
    for (const unsigned distance : {16U, 4096U, 1U << 20}) {
        for (BlockKey i = 0; i < 1500; ++i)
            keys.push_back(0x7f0000000011 + i * distance);
    }
    keys.push_back(1); // a null block
    for (int step = 0; step < 200'000; ++step) {
        // Fills up, empties, and fills up again.
        const bool fills = step / 50'000 % 2 == 0;
        const BlockKey key = keys[random() % keys.size()];
        LiveBlock *const found = blocks.find(key);
        ASSERT_EQ(found != nullptr, expected.count(key) == 1);
        if (random() % 4 < (fills ? 3 : 1)) {
            ASSERT_TRUE(blocks.enter({key, "a.cpp", static_cast<std::size_t>(step), 1, 0}));
            auto &entry = expected[key];
            entry = entry.key == 0 ? LiveBlock{key, "a.cpp", static_cast<std::size_t>(step), 1, 0} : entry;
            entry.repetitions += found == nullptr ? 0 : 1;
        } else if (found != nullptr) {
            ASSERT_EQ(found->size, expected[key].size);
            ASSERT_EQ(found->repetitions, expected[key].repetitions);
            blocks.remove(found);
            expected.erase(key);
        }
        if (step == 120'000) {
            blocks.clear();
            expected.clear();
        }
        ASSERT_EQ(blocks.count(), expected.size());
    }
    std::size_t visited = 0;
    blocks.forEach([&](const LiveBlock &block) { visited += expected.count(block.key); });
    EXPECT_EQ(visited, expected.size());
}

} // namespace
} // namespace Zorvan::analysis
