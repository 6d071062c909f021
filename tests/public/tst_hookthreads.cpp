// Hooks of many threads at once, with and without an event loop.

#include "support/crew.h"

#include <zorvan/debug.h>

#include <QCoreApplication>

#include <array>
#include <gtest/gtest.h>
#include <string>

using Zorvan::Debug;

namespace {

constexpr int activators = 8;
constexpr int rounds = 12;

std::atomic<int> s_functionCalls{0};

void countFunction(char *, char *)
{
    ++s_functionCalls;
}

class Counter : public QObject, public Zorvan::IHookInterface
{
public:
    void hookActivated(char *, char *) override { ++calls; }
    void member(char *, char *) { ++calls; }

    std::atomic<int> calls{0};
};

/// Uses all hook calls; what it installs for itself it removes again.
void useHooks(const std::string &ownKey, Counter &own)
{
    for (int round = 0; round < rounds; ++round) {
        Debug::installHook(ownKey.c_str(), &own, true);
        Debug::installHook("shared", &own, false);
        Debug::installCHookHandler("shared", countFunction);
        for (const char *const key : {ownKey.c_str(), "permanent", "shared"})
            Debug::activateHooks(key, "text");
        int count = 0;
        EXPECT_NE(Debug::getHooks(count), nullptr);
        EXPECT_GE(count, 2);
        Debug::removeCHookHandler("shared", round % 2 ? nullptr : countFunction);
        Debug::removeHook("shared", &own);
        Debug::removeHook(ownKey.c_str(), &own);
    }
}

/// Runs the activators beside \a other, which is called until they have finished, and ends the library.
template <typename Other>
void activateBeside(Other other)
{
    Counter permanent;
    std::array<Counter, activators> counters;
    Debug::initDebug();
    Debug::installHook("permanent", &permanent, false);
    Debug::installCppHookHandler("permanent", &permanent,
                                 static_cast<void (QObject::*)(char *, char *)>(&Counter::member));
    Zorvan::test::Crew crew(activators, [&counters](int activator) {
        useHooks("own" + std::to_string(activator), counters.at(static_cast<std::size_t>(activator)));
    });
    while (crew.isBusy())
        other();
    crew.join();
    Debug::exitDebug();
    EXPECT_EQ(permanent.calls, 2 * activators * rounds);
    for (const Counter &counter : counters)
        EXPECT_GE(counter.calls, 2 * rounds); // its direct key, and at least its own activations
    EXPECT_GE(s_functionCalls, 1);
}

TEST(HookThreads, RunEachHandlerOncePerActivation)
{
    activateBeside([] { std::this_thread::yield(); });
}

TEST(HookThreads, AreJoinedByTheLoopOfTheApplication)
{
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    activateBeside([] { QCoreApplication::processEvents(); });
    activateBeside([] { std::this_thread::yield(); }); // the end joins what the loop has not seen
    QCoreApplication::processEvents();
}

TEST(HookThreads, ActivateTheLibrarysKeysWhileItEndsAndStarts)
{
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    std::atomic<bool> enough{false};
    Zorvan::test::Crew crew(2, [&enough](int thread) {
        while (!enough)
            Debug::activateHooks(thread ? "DebugServerFilterChangedHook" : "DebugServer_allowRemote", "1");
    });
    for (int round = 0; round < 3 * rounds; ++round) {
        Debug::initDebug();
        QCoreApplication::processEvents();
        Debug::exitDebug();
    }
    enough = true;
    crew.join();
    Debug::initDebug();
    Debug::exitDebug(); // joins the last ones
}

} // namespace
