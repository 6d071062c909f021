#include "lowlevelfunctions/loglines.h"
#include "support/childprocess.h"
#include "support/crew.h"
#include "support/forks.h"

#include <zorvan/debug.h>

#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvan::test {
namespace {

constexpr int threadCount = 8;

void logLine(const std::string &tag, const std::string &writer, int number)
{
    gyxLog(tag.c_str(), nullptr, 0, (sequenceLine(writer, number) + '\n').c_str(), nullptr);
}

/// Runs \a work(number of the thread) in several threads that start together.
void inThreads(int count, const std::function<void(int)> &work)
{
    std::atomic<int> missing = count;
    Crew(count, [&](int number) {
        for (--missing; missing > 0;)
            std::this_thread::yield();
        work(number);
    }).join();
}

/// Writers "0", "1", ... with \a lines each.
Counts everything(int writers, int lines)
{
    Counts counts;
    for (int writer = 0; writer < writers; ++writer)
        counts[std::to_string(writer)] = lines;
    return counts;
}

TEST(SystemLogThreads, channelsMayBeDroppedWhileTagsAreUsedForTheFirstTime)
{
    constexpr int tags = 20;
    std::atomic<int> busy = threadCount;
    inThreads(threadCount + 1, [&](int thread) {
        if (thread == threadCount) {
            while (busy > 0)
                exitDebugDaemon();
            return;
        }
        for (int number = 0; number < tags; ++number) {
            logLine("First" + std::to_string(number), std::to_string(thread), 0);
            logLine("Common", std::to_string(thread), number);
        }
        --busy;
    });
    EXPECT_EQ(countsIn(messagesIn("Common-0.log")), everything(threadCount, tags));
    for (int tag = 0; tag < tags; ++tag)
        EXPECT_EQ(countsIn(messagesIn("First" + std::to_string(tag) + "-0.log")), everything(threadCount, 1));
}

TEST(SystemLogThreads, linesArriveOnceInOrderAndFilesTakeTurnsAtTheExactMessage)
{
    setLowlevelIntegerProperty(6, 1000);
    inThreads(threadCount, [](int thread) {
        for (int number = 0; number < 200; ++number)
            logLine("Turns", std::to_string(thread), number);
    });
    std::vector<std::string> lines = messagesIn("Turns-0.log");
    const std::vector<std::string> last = messagesIn("Turns-1.log");
    EXPECT_EQ(lines.size(), 1000U);
    EXPECT_EQ(last.size(), 600U);
    lines.insert(lines.end(), last.begin(), last.end());
    EXPECT_EQ(countsIn(lines), everything(threadCount, 200));
    setLowlevelIntegerProperty(6, -1);
}

TEST(SystemLogProcesses, twoProcessesShareOneLog)
{
    ASSERT_EQ(runChild("sh -c '\"$0\" log Both 0 400 & \"$0\" log Both 1 400; wait' " HELPER).exitCode, 0);
    EXPECT_EQ(countsIn(messagesIn("Both-0.log")), everything(2, 400));
}

TEST(SystemLogProcesses, childAndParentLogOnAfterAForkAmidLogging)
{
    constexpr int children = 20;
    std::atomic<bool> done = false;
    ForksAmidWork forks;
    int lines[2] = {0, 0};
    inThreads(3, [&](int thread) {
        if (thread < 2) {
            while (!done) { // a thread that ends would not be between two turns
                forks.turn([&] {
                    if (lines[thread] == 4000)
                        return;
                    logLine("Fork", std::to_string(thread), lines[thread]);
                    setLowlevelIntegerProperty(thread, lines[thread]++ / 16);
                });
            }
            return;
        }
        for (int number = 0; number < children; ++number) {
            const pid_t child = forks.fork();
            if (child == 0) {
                alarm(60); // ends a child that hangs
                logLine("Fork", "child", number);
                logLine("New", "child", number);
                setLowlevelIntegerProperty(4, number);
                exitDebugDaemon();
                logLine("Fork", "grown-up", number);
                _exit(0);
            }
            int status = 0;
            EXPECT_EQ(waitpid(child, &status, 0), child);
            EXPECT_EQ(status, 0);
            logLine("Fork", "parent", number);
        }
        done = true;
    });
    EXPECT_EQ(countsIn(messagesIn("New-0.log")), (Counts{{"child", children}}));
    const Counts expected = {
        {"0", lines[0]}, {"1", lines[1]}, {"child", children}, {"grown-up", children}, {"parent", children}};
    EXPECT_EQ(countsIn(messagesIn("Fork-0.log")), expected);
}

} // namespace
} // namespace Zorvan::test
