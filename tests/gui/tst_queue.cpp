// The road into the GUI thread: when settings are read, and how fast printers are slowed down.

#include "support/guiapplication.h"
#include "support/maphost.h"

#include <zorvan/debug.h>

#include <QSocketNotifier>

#include <gtest/gtest.h>
#include <unistd.h>

using Zorvan::Debug;
using namespace Zorvan::test;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

constexpr int kernel = 2;
constexpr int freeLines = 200; ///< so many may wait before their printers are slowed down

void print(int lines = 1)
{
    for (int i = 0; i < lines; ++i)
        Debug::println(kernel, 0, QStringLiteral("line"), 0);
}

class QueueHost : public MapHost
{
public:
    std::atomic<int> daemonReads{0};

    int readIntegerSetting(const char *group, const QString &key, int defaultValue) override
    {
        if (std::string(group) == "ProgressBar" && key == QLatin1String("useDaemon"))
            ++daemonReads;
        return MapHost::readIntegerSetting(group, key, defaultValue);
    }
};

class Queue : public ::testing::Test
{
protected:
    Queue()
    {
        host.store("serverPort", 0);
        Debug::initDebug();
        application.emplace();
    }
    ~Queue() override { Debug::exitDebug(); }
    void runLoop()
    {
        Debug::initDebug();
        QCoreApplication::processEvents();
    }
    static void runOn()
    {
        ASSERT_TRUE(runUntil([rounds = 0]() mutable { return ++rounds > 20; }));
    }

    QueueHost host;
    std::optional<TestApplication<QCoreApplication>> application;
};

TEST_F(Queue, ReadsItsSettingsOnceAndNotBeforeTheyAreNeeded)
{
    const auto reads = [this] {
        return std::vector<int>{host.reads("showWindow"), host.daemonReads, host.reads("serverPortOpen"),
                                host.reads("noWindowOutput")};
    };
    EXPECT_EQ(reads(), (std::vector<int>{0, 0, 0, 0})) << "without an application there is no queue";
    host.onRead = [](const QString &key) {
        if (key == QLatin1String("showWindow"))
            print(); // needs the queue that is being made
    };
    print();
    EXPECT_EQ(reads(), (std::vector<int>{1, 1, 0, 0})) << "the first line makes the queue";
    QCoreApplication::processEvents();
    EXPECT_EQ(host.reads("serverPortOpen"), 1) << "asked when the loop runs";
    ASSERT_TRUE(runUntil([this] { return host.reads("noWindowOutput") == 1; })) << "asked by the first batch";
    Debug::initDebug();
    print(3);
    runOn();
    EXPECT_EQ(reads(), (std::vector<int>{1, 1, 1, 1}));
    Debug::exitDebug();
    Debug::exitDebug();
    Debug::initDebug();
    print();
    ASSERT_TRUE(runUntil([this] { return host.reads("serverPortOpen") == 2; }));
    runOn();
    EXPECT_EQ(reads(), (std::vector<int>{2, 2, 2, 1})) << "a new queue, but the same process";
}

class Throttle : public Queue
{
protected:
    Throttle() { runLoop(); }

    /// Lets a worker print while the loop stands still; returns how long that took.
    template <typename Print, typename Meanwhile>
    milliseconds timeInWorker(Print work, Meanwhile meanwhile)
    {
        std::atomic<bool> done{false};
        const auto start = steady_clock::now();
        std::thread printer([&] {
            work();
            done = true;
        });
        while (!done)
            meanwhile();
        printer.join();
        return std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    }
    milliseconds timeInWorker(int lines)
    {
        return timeInWorker([lines] { print(lines); }, std::this_thread::yield);
    }
};

TEST_F(Throttle, SlowsWorkersDownByTenMillisecondsForEachLineTooMany)
{
    print(freeLines - 50);
    EXPECT_GE(timeInWorker(50 + 40), milliseconds(400));
    const QString message = QStringLiteral("a line\n").repeated(30);
    const auto printMessage = [&message] { Debug::println(kernel, 0, message, 0); };
    EXPECT_GE(timeInWorker(printMessage, std::this_thread::yield), milliseconds(300));
    runOn();
    EXPECT_LT(timeInWorker(freeLines), milliseconds(2000)) << "the count starts anew with each batch";
}

TEST_F(Throttle, DoesNotHoldUpWhoeverNeedsTheModuleTable)
{
    int calls = 0;
    const auto call = [&calls] {
        Debug::setClippingLevel(kernel, 0);
        Debug::getEnabledSettings();
        ++calls;
    };
    EXPECT_GE(timeInWorker([] { print(freeLines + 100); }, call), milliseconds(1000));
    EXPECT_GT(calls, 500) << "with the lock held over the sleep it would be about a hundred";
}

TEST_F(Throttle, LeavesTheThreadOfTheLoopAlone)
{
    const auto start = steady_clock::now();
    print(2000);
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(10)) << "half of what the sleeps would cost";
}

class PlainLoop
{
protected:
    // Qt's loop over GLib handles sockets whatever it is told.
    PlainLoop() { qputenv("QT_NO_GLIB", "1"); }
};

class ClientThrottle : PlainLoop, public Throttle
{};

TEST_F(ClientThrottle, HandlesEventsButNotSocketsInAClientThatPrintsTooMuch)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "x", 1), 1);
    QSocketNotifier notifier(ends[0], QSocketNotifier::Read);
    int reads = 0;
    int events = 0;
    QObject::connect(&notifier, &QSocketNotifier::activated, [&] { ++reads; });
    QTimer::singleShot(0, [&] {
        ++events;
        // Another thread needs the module table meanwhile.
        std::thread([] { Debug::setClippingLevel(kernel, 0); }).join();
    });
    print(freeLines + 10);
    EXPECT_EQ(events, 0) << "an ordinary process";
    Debug::setClientMode();
    print();
    EXPECT_EQ(events, 1);
    EXPECT_EQ(reads, 0);
    QTimer::singleShot(0, [&] { ++events; });
    print(freeLines - 10);
    EXPECT_EQ(events, 1) << "handled: the count starts anew";
    notifier.setEnabled(false);
    close(ends[0]);
    close(ends[1]);
}

TEST_F(ClientThrottle, DoesNotNestTheCallsThatItHandles)
{
    Debug::setClientMode();
    int calls = 0;
    int depth = 0;
    int deepest = 0;
    const auto call = [&] {
        deepest = std::max(deepest, ++depth);
        print();
        --depth;
        ++calls;
    };
    for (int i = 0; i < 300; ++i)
        QMetaObject::invokeMethod(QCoreApplication::instance(), call, Qt::QueuedConnection);
    print(freeLines);
    EXPECT_TRUE(runUntil([&] { return calls == 300; }));
    EXPECT_LE(deepest, 2);
}

} // namespace
