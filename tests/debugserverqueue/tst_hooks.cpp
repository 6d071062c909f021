// How the threads of hooks are collected, and the hooks that start them for a test.

#include "debugserverqueue/builtinhooks.h"
#include "debugserverqueue/hookregistry.h"
#include "debugserverqueue/hooks.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <QCoreApplication>

#include <atomic>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

std::atomic<int> s_calls{0};
std::atomic<bool> s_blocked{false};

void count(char *, char *)
{
    ++s_calls;
    while (s_blocked)
        std::this_thread::yield();
}

/// Activates "key" and waits until its handler has been called.
void activate()
{
    const int before = s_calls;
    Debug::activateHooks("key", "");
    while (s_calls == before)
        std::this_thread::yield();
}

std::size_t threadCount()
{
    return hookRegistry().threads().size();
}

void waitForThreads()
{
    hookRegistry().waitForThreads(std::chrono::seconds(60));
}

class CollectedHooks : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Debug::initDebug();
        Debug::installCHookHandler("key", count);
    }
    void TearDown() override
    {
        s_blocked = false;
        Debug::exitDebug();
        EXPECT_EQ(threadCount(), 0U);
    }
};

TEST_F(CollectedHooks, WithoutAQueueTheNextActivationJoinsWhatHasEnded)
{
    for (int i = 0; i < 5; ++i) {
        activate();
        waitForThreads();
        EXPECT_EQ(threadCount(), 1U);
    }
    s_blocked = true;
    activate();
    activate();
    EXPECT_EQ(threadCount(), 2U) << "those that run are left alone";
}

TEST_F(CollectedHooks, AThreadIsJoinedOnceAndNotBeforeItsEnd)
{
    s_blocked = true;
    activate();
    QThread *const thread = hookRegistry().threads().at(0).get();
    hooks::reap(thread); // the message of an older one at the same address
    EXPECT_EQ(threadCount(), 1U);
    s_blocked = false;
    waitForThreads();
    hooks::reap(thread);
    EXPECT_EQ(threadCount(), 0U);
    hooks::reap(thread);
}

std::atomic<pid_t> s_child{0};

void forkAndReturn(char *, char *)
{
    const pid_t child = fork();
    if (child != 0) {
        s_child = child;
        return;
    }
    if (threadCount() != 0)
        _Exit(1); // it would wait for the threads of its parent
    alarm(20);
    std::atexit([] { _Exit(0); }); // leak checkers miss the stacks of the other threads
}

TEST_F(CollectedHooks, AHandlerMayForkAndReturnInTheChildToo)
{
    Debug::installCHookHandler("fork", forkAndReturn);
    Debug::activateHooks("fork", "");
    waitForThreads();
    int status = -1;
    EXPECT_EQ(waitpid(s_child, &status, 0), s_child);
    EXPECT_EQ(status, 0) << "the child ends with its only thread";
}

TEST(TestAssertions, AreThreadsThatTheLoopJoinsUpToALimit)
{
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    MapHost host;
    Debug::initDebug();
    QCoreApplication::processEvents();
    const auto start = [](const char *number) {
        runBuiltinHook("DebugServer_testAssert", number);
        const std::size_t started = threadCount();
        while (threadCount() > 0)
            QCoreApplication::processEvents();
        return started;
    };
    host.takeLines();
    EXPECT_EQ(start("3"), 3U);
    EXPECT_EQ(start("many"), 0U);
    EXPECT_EQ(start("-5"), 0U);
    EXPECT_EQ(start("64"), 64U);
    EXPECT_TRUE(host.takeLines().empty());
    EXPECT_EQ(start("2000000000"), 64U);
    EXPECT_EQ(host.takeLines().size(), 1U);
    EXPECT_EQ(start(""), 0U);
    EXPECT_NE(
        readFile(libraryFile("GYX-syslog-0.log"))
            .find("source/debugserverqueue(1284): ++++ Debug Assertion Failed: ;testing assertion: enter "
                  "number of concurrent threads!\n"),
        std::string::npos);
    Debug::exitDebug();
}

} // namespace
