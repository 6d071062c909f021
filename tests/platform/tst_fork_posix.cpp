#include "platform/lock.h"
#include "platform/process.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <type_traits>
#include <unistd.h>

namespace Zorvan::platform::tests {
namespace {

// Static locks can be used before the first static constructor has run and after the last static destructor.
static_assert((static_cast<void>(RecursiveLock()), true) && std::is_trivially_destructible_v<RecursiveLock>);
static_assert((static_cast<void>(Mutex()), true) && std::is_trivially_destructible_v<Mutex>);

RecursiveLock s_lock;
std::string s_calls;

int exitCodeOf(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Fork, childOwnsTheLocksOfTheForkingThread)
{
    aroundFork([]() ZORVAN_NO_THREAD_SAFETY_ANALYSIS { s_lock.lock(); },
               []() ZORVAN_NO_THREAD_SAFETY_ANALYSIS {
                   s_calls += "parent";
                   s_lock.unlock();
               },
               []() ZORVAN_NO_THREAD_SAFETY_ANALYSIS {
                   s_calls += s_lock.isMine() ? "child" : "stranger";
                   s_lock.unlock();
               });
    std::atomic<bool> stop = false;
    Thread busy([&] {
        while (!stop)
            const Locked guard(s_lock);
    });
    for (int round = 0; round < 20; ++round) {
        s_calls.clear();
        const pid_t child = fork();
        if (child == 0) {
            const Locked guard(s_lock);
            _exit(s_calls == "child" && s_lock.depth() == 1 ? 0 : 1);
        }
        EXPECT_EQ(exitCodeOf(child), 0);
        EXPECT_EQ(s_calls, "parent");
    }
    stop = true;
}

TEST(Fork, givesTheChildsThreadANumberOfItsOwn)
{
    const std::uint64_t mine = kernelThreadId();
    std::uint64_t others = mine;
    Thread([&others] { others = kernelThreadId(); }).join();
    EXPECT_NE(others, mine);
    EXPECT_EQ(kernelThreadId(), mine);
    const pid_t child = fork();
    if (child == 0)
        _exit(kernelThreadId() == static_cast<std::uint64_t>(getpid()) ? 0 : 1);
    EXPECT_EQ(exitCodeOf(child), 0);
}

} // namespace
} // namespace Zorvan::platform::tests
