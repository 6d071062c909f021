#include "leakrecorder.h"
#include "support/crew.h"
#include "support/forks.h"

#include <atomic>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvan::test {
namespace {

using analysis::freeBlock;

constexpr int threadCount = 3;

TEST_F(LeakTest, blocksMayBeFreedByOtherThreads)
{
    constexpr int blocksOfEach = 1500;
    constexpr std::size_t places = 16;
    std::atomic<void *> shared[places] = {};
    Crew(threadCount, [&](int number) {
        for (int i = 0; i < blocksOfEach; ++i) {
            auto *const block = static_cast<int *>(allocate(sizeof(int), "shared.cpp", number));
            *block = i;
            // Puts its block there and frees another one's.
            if (void *const other = shared[static_cast<std::size_t>(i + number) % places].exchange(block))
                freeBlock(other);
        }
    }).join();
    std::ptrdiff_t left =
        std::count_if(shared, shared + places, [](void *block) { return block != nullptr; });
    LeakRecorder recorder;
    recorder.report();
    EXPECT_EQ(analysis::trackedMemoryUsage(), left * static_cast<int>(sizeof(int)));
    for (std::atomic<void *> &block : shared)
        if (block != nullptr)
            freeBlock(block);
    EXPECT_EQ(recorder.leaks(), Lines());
    EXPECT_EQ(analysis::trackedMemoryUsage(), 0);
}

TEST_F(LeakTest, reportsClearsAndSwitchesDoNotDisturbThreadsThatAllocate)
{
    LeakRecorder recorder;
    Crew allocators(threadCount - 1, [](int) {
        for (int i = 0; i < 1000; ++i) {
            void *const block = analysis::allocate(24, "a.cpp", i % 10, i % 3 == 0);
            freeBlock(analysis::reallocate(block, 48, "b.cpp", 1));
        }
    });
    for (int round = 0; allocators.isBusy(); ++round) {
        recorder.leaks("none");
        analysis::clearLeaks();
        analysis::setMemoryTracking(round % 2);
        static_cast<void>(analysis::trackedMemoryUsage());
    }
    allocators.join();
    recorder.leaks();
    analysis::setMemoryTracking(1);
    analysis::clearLeaks();
    void *const block = allocate(10);
    EXPECT_EQ(recorder.leaks(), Lines{"data.cpp:1 10 x 1"});
    freeBlock(block);
}

TEST_F(LeakTest, childOfAForkTracksOn)
{
    std::atomic<bool> done = false;
    ForksAmidWork forks;
    const Crew busy(2, [&](int number) {
        while (!done)
            forks.turn([number] { freeBlock(analysis::allocate(24, "busy.cpp", number, number == 1)); });
    });
    for (int i = 0; i < 10; ++i) {
        const pid_t child = forks.fork();
        if (child == 0) {
            alarm(60); // ends a child that hangs
            freeBlock(analysis::allocate(8, "child.cpp", 1, true));
            LeakRecorder recorder;
            leak(8, "child.cpp", 2);
            _exit(recorder.leaks("child.cpp") == Lines{"child.cpp:2 8 x 1"} ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    done = true;
}

} // namespace
} // namespace Zorvan::test
