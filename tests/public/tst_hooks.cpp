// Hooks of a host without an application: who is called, where, with what, and until when.

#include "public/hookrecorder.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <gtest/gtest.h>
#include <optional>
#include <sys/resource.h>

using Zorvan::Debug;
using namespace Zorvan::test;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Texts = std::vector<std::string>;
using Method = void (QObject::*)(char *, char *);

namespace {

std::atomic<int> s_firstCalls{0};
std::atomic<int> s_secondCalls{0};

void first(char *, char *)
{
    ++s_firstCalls;
}

void second(char *, char *)
{
    ++s_secondCalls;
}

class Target : public QObject
{
public:
    void addOne(char *, char *) { calls += 1; }
    void addTen(char *, char *) { calls += 10; }

    std::atomic<int> calls{0};
};

const auto addOne = static_cast<Method>(&Target::addOne);
const auto addTen = static_cast<Method>(&Target::addTen);

Texts hookList()
{
    int count = -1;
    const QString *const keys = Debug::getHooks(count);
    Texts list;
    for (int i = 0; i < count; ++i)
        list.push_back(keys[i].toStdString());
    return list;
}

class Hooks : public ::testing::Test
{
protected:
    void SetUp() override { Debug::initDebug(); }
    void TearDown() override { Debug::exitDebug(); }
    /// Ends the library, which waits for the handlers, and starts it again without hooks.
    static void restart()
    {
        Debug::exitDebug();
        Debug::initDebug();
    }

    MapHost host;
    HookRecorder recorder;
    HookRecorder other;
};

TEST_F(Hooks, RunWhereTheFirstHandlerOfTheirKeyWanted)
{
    const std::thread::id here = std::this_thread::get_id();
    Debug::installHook("key", &recorder, true);
    Debug::installHook("key", &other, false);
    Debug::activateHooks("key", "");
    EXPECT_EQ(other.thread(), here);
    Debug::removeHook("key", &recorder);
    Debug::installHook("key", &recorder, false);
    Debug::activateHooks("key", "");
    EXPECT_EQ(recorder.takeCalls().size(), 2U)
        << "called before the call returned: the key was never forgotten";
    Debug::removeHook("key", &recorder);
    Debug::removeHook("key", &other);
    other.takeCalls();
    Debug::installHook("key", &recorder, false);
    Debug::installHook("key", &other, true);
    Debug::activateHooks("key", "");
    recorder.waitForCall();
    other.waitForCall();
    EXPECT_NE(recorder.thread(), here);
    EXPECT_EQ(recorder.thread(), other.thread()) << "one thread for each activation";
}

TEST_F(Hooks, EveryHandlerGetsCopiesOfItsOwn)
{
    recorder.onCall = other.onCall = [](char *key, char *parameters) { key[0] = parameters[0] = '\0'; };
    for (HookRecorder *const handler : {&recorder, &other, &recorder})
        Debug::installHook("key", handler, true);
    Debug::activateHooks("key", "gr\xfc\xdf");
    Debug::activateHooks("key", nullptr);
    const Texts expected{"key=gr\xfc\xdf", "key="};
    EXPECT_EQ(recorder.takeCalls(), expected);
    EXPECT_EQ(other.takeCalls(), expected);
}

TEST_F(Hooks, HandlersMayChangeTheHooksThatRun)
{
    HookRecorder later;
    for (const bool direct : {true, false}) {
        recorder.onCall = [&](char *key, char *) {
            Debug::removeHook(key, &recorder);
            Debug::removeHook(key, &other);
            Debug::installHook(key, &later, direct);
            Debug::installCHookHandler("function", first);
            Debug::activateHooks(key, "nested");
        };
        Debug::installHook("key", &recorder, direct);
        Debug::installHook("key", &other, direct);
        Debug::activateHooks("key", "start");
        later.waitForCall();
        restart();
        EXPECT_EQ(recorder.takeCalls(), Texts{"key=start"});
        EXPECT_EQ(other.takeCalls(), Texts{"key=start"}) << "the handlers of the moment of activation run";
        EXPECT_EQ(later.takeCalls(), Texts{"key=nested"});
    }
}

TEST_F(Hooks, AFunctionIsInstalledOnceForEachKey)
{
    for (const auto function : {first, first, second, decltype(&first)(nullptr)}) {
        Debug::installCHookHandler("a", function);
        Debug::installCHookHandler("b", function);
    }
    Debug::activateHooks("a", "");
    Debug::removeCHookHandler("b", second);
    Debug::activateHooks("b", "");
    Debug::installHook("a", &recorder, false);
    Debug::removeCHookHandler("a", nullptr);
    Debug::removeCHookHandler("b", first);
    Debug::activateHooks("a", "");
    EXPECT_EQ(hookList(), Texts{"a"});
    restart();
    EXPECT_EQ(s_firstCalls, 2);
    EXPECT_EQ(s_secondCalls, 1);
    EXPECT_EQ(recorder.takeCalls().size(), 1U) << "only the functions were removed";
}

TEST_F(Hooks, MembersAreFoundByObjectAndMethod)
{
    Target a;
    Target b;
    const auto callsAfter = [&](QObject *object, Method method) {
        for (Target *const target : {&a, &b, &a}) {
            Debug::installCppHookHandler("key", target, addOne);
            Debug::installCppHookHandler("key", target, addTen);
        }
        Debug::removeCppHookHandler("key", object, method);
        Debug::removeCHookHandler("key", nullptr); // members are no functions
        a.calls = b.calls = 0;
        Debug::activateHooks("key", "");
        restart();
        return std::pair<int, int>(a.calls, b.calls);
    };
    EXPECT_EQ(callsAfter(&a, addOne), std::pair(10, 11));
    EXPECT_EQ(callsAfter(&a, nullptr), std::pair(0, 11));
    EXPECT_EQ(callsAfter(nullptr, addTen), std::pair(1, 1));
    EXPECT_EQ(callsAfter(nullptr, nullptr), std::pair(0, 0));
}

TEST_F(Hooks, DestroyedObjectsAreNotCalledAndMakeRoomForOthers)
{
    std::optional<Target> target(std::in_place);
    Debug::installCppHookHandler("key", &*target, addOne);
    target.reset();
    Debug::activateHooks("key", "");
    target.emplace(); // in the same place
    Debug::installCppHookHandler("key", &*target, addOne);
    Debug::activateHooks("key", "");
    restart();
    EXPECT_EQ(target->calls, 1);
}

TEST_F(Hooks, AReceiverForAllModulesStopsActivationsAndAdapters)
{
    Target target;
    Debug::installCHookHandler("old", first);
    host.takeLines();
    Debug::setOutputReceiver(-1, [](Zorvan::hookData *) {});
    Debug::installHook("key", &recorder, true);
    Debug::activateHooks("key", "");
    Debug::installCHookHandler("function", first);
    Debug::installCppHookHandler("member", &target, addOne);
    EXPECT_EQ(hookList(), (Texts{"key", "old"}));
    Debug::removeCHookHandler("old", first);
    Debug::removeHook("key", &recorder);
    EXPECT_EQ(hookList(), Texts{});
    Debug::setOutputReceiver(-1, nullptr);
    EXPECT_EQ(recorder.takeCalls(), Texts{});
    EXPECT_EQ(host.takeLines(), Texts{}) << "no warning either";
}

TEST_F(Hooks, AreListedInOrderWithoutTheKeysOfTheLibrary)
{
    for (const char *const key :
         {"b", "DebugServerEnabledLevelChangedHook", "a", "DebugServerEnabledClassesChangedHook",
          "DebugServerSettingsChangedHook", "C", "DebugServerFilterChangedHook",
          "DebugServerWindowClosedHook", "DebugServerMakeDefaultHook"})
        Debug::installHook(key, &recorder, true);
    Debug::installHook("none", nullptr, true);
    int count = -1;
    const QString *const keys = Debug::getHooks(count);
    std::thread([&] {
        Debug::removeHook("a", &recorder);
        EXPECT_EQ(hookList(), (Texts{"C", "b"}));
    }).join();
    ASSERT_EQ(count, 3);
    EXPECT_EQ(keys[1], QLatin1String("a")) << "the array belongs to the thread that asked";
    Debug::activateHooks("DebugServerFilterChangedHook", "");
    EXPECT_EQ(recorder.takeCalls().size(), 1U);
    Debug::exitDebug();
    EXPECT_EQ(Debug::getHooks(count), nullptr);
    EXPECT_EQ(count, 0);
    Debug::initDebug();
    EXPECT_NE(Debug::getHooks(count), nullptr);
    EXPECT_EQ(count, 0) << "the end forgets the hooks";
}

TEST_F(Hooks, TheEndAsksHandlersToHurryAndWaitsTwoSeconds)
{
    std::atomic<bool> released{false};
    std::atomic<bool> done{false};
    recorder.onCall = [&](char *, char *) {
        waitFor([] { return QThread::currentThread()->isInterruptionRequested(); });
        waitFor([&] { return released.load(); });
        done = true;
    };
    Debug::installHook("key", &recorder, false);
    int argc = 0;
    std::optional<QCoreApplication> application(std::in_place, argc, nullptr);
    Debug::initDebug();
    Debug::activateHooks("key", "");
    recorder.waitForCall();
    const auto begin = Clock::now();
    application.reset();
    EXPECT_GE(Clock::now() - begin, 2s);
    EXPECT_FALSE(done);
    Debug::initDebug();
    restart();
    EXPECT_LT(Clock::now() - begin, 4s) << "once is enough";
    released = true;
    waitFor([&] { return done.load(); });
    done = false;
    Debug::installHook("key", &recorder, false);
    Debug::activateHooks("key", "");
    restart();
    EXPECT_TRUE(done);
}

TEST_F(Hooks, AStartWhileOneHoldsUpTheEndIsAFreshOne)
{
    host.store("DebugServerFileOutput", "On");
    restart();
    EXPECT_EQ(Debug::createModule("Made", "Made"), 27);
    Debug::println(2, 0, QStringLiteral("old"), 0);
    Debug::setDisplayFlags(-5);
    const int flags = Debug::getDisplayFlags() & ~256;
    recorder.onCall = [](char *, char *) {
        waitFor([] { return QThread::currentThread()->isInterruptionRequested(); });
        Debug::initDebug();
    };
    Debug::installHook("key", &recorder, false);
    Debug::activateHooks("key", "");
    recorder.waitForCall();
    Debug::exitDebug();
    EXPECT_EQ(Debug::getDisplayFlags(), flags);
    EXPECT_EQ(hookList(), Texts{});
    EXPECT_EQ(Debug::createModule("Next", "Next"), 27);
    Debug::println(2, 0, QStringLiteral("new"), 0);
    EXPECT_EQ(readFile(libraryFile("GYX_Debug_Output.log")).find("old"), std::string::npos);
}

TEST_F(Hooks, ThreadsForWhichThereIsNoDescriptorAreRefused)
{
    rlimit limit{};
    getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = 60;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::atomic<bool> goOn{false};
    recorder.onCall = [&goOn](char *, char *) { waitFor([&] { return goOn.load(); }); };
    Debug::installHook("key", &recorder, false);
    for (int i = 0; i < 60; ++i)
        Debug::activateHooks("key", "");
    const auto refused = host.linesWith("++++ no thread could be started for a hook!");
    EXPECT_GT(refused, 0);
    goOn = true;
    std::ptrdiff_t calls = 0;
    waitFor([&] { return (calls += recorder.takeCalls().size()) == 60 - refused; });
    waitFor([&] {
        Debug::activateHooks("key", "");
        return host.linesWith("++++ no thread") == 0;
    });
    Debug::exitDebug(); // it waits for them
    Debug::initDebug();
}

TEST_F(Hooks, AHandlerMayEndTheLibrary)
{
    recorder.onCall = [](char *, char *) { Debug::exitDebug(); };
    Debug::installHook("key", &recorder, false);
    const auto begin = Clock::now();
    Debug::activateHooks("key", "");
    int count = 0;
    waitFor([&] { return Debug::getHooks(count) == nullptr; });
    EXPECT_LT(Clock::now() - begin, 2s) << "it waited for itself";
    Debug::initDebug();
}

} // namespace
