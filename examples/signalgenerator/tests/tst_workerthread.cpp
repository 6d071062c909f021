#include "workerthread.h"

#include <algorithm>
#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using namespace SignalGenerator;

namespace {

constexpr int jobsPerThread = 500;

TEST(WorkerThread, KeepsTheOrderOfEachThreadThatPosts)
{
    std::vector<int> done[2]; // touched by the worker alone, read when it is idle
    WorkerThread worker("worker");
    const auto postAll = [&](int poster) {
        for (int i = 0; i < jobsPerThread; ++i)
            worker.post([&done, poster, i] { done[poster].push_back(i); });
    };
    std::thread other(postAll, 1);
    postAll(0);
    other.join();
    worker.waitUntilIdle();
    for (const std::vector<int> &jobs : done) {
        ASSERT_EQ(jobs.size(), static_cast<std::size_t>(jobsPerThread));
        EXPECT_TRUE(std::is_sorted(jobs.begin(), jobs.end()));
    }
}

TEST(WorkerThread, IsNotIdleWhileItsLastJobRuns)
{
    WorkerThread worker("worker");
    std::promise<void> started;
    std::promise<void> mayEnd;
    std::atomic<bool> ended{false};
    worker.post([&] {
        started.set_value();
        mayEnd.get_future().wait();
        ended = true;
    });
    started.get_future().wait(); // the queue is empty now
    std::thread waiter([&] {
        worker.waitUntilIdle();
        EXPECT_TRUE(ended);
    });
    mayEnd.set_value();
    waiter.join();
    worker.waitUntilIdle(); // and again, with nothing to do
}

TEST(WorkerThread, RunsWhatIsQueuedAndWhatThatPostsBeforeItEnds)
{
    int done = 0;
    {
        WorkerThread worker("worker");
        for (int i = 0; i < jobsPerThread; ++i)
            worker.post([&] { ++done; });
        worker.post([&] { worker.post([&] { ++done; }); });
    }
    EXPECT_EQ(done, jobsPerThread + 1);
}

} // namespace
