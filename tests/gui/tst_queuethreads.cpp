// Many threads and an event loop at once, without widgets: small, for the race checkers.

#include "support/crew.h"
#include "support/guiapplication.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <cstdio>
#include <gtest/gtest.h>
#include <map>

using Zorvan::Debug;
using namespace Zorvan::test;

namespace {

constexpr int kernel = 2;
constexpr int printers = 4;
constexpr int linesPerPrinter = 100;

/// Runs the printers and an event loop that calls \a other again and again; then nobody prints any more.
void printBeside(const std::function<void()> &other)
{
    const Crew crew(printers, [](int printer) {
        for (int number = 0; number < linesPerPrinter; ++number)
            Debug::println(kernel, 0, QStringLiteral("#%1:%2").arg(printer).arg(number), 0);
    });
    const auto turn = [&] {
        other();
        return !crew.isBusy();
    };
    if (!runUntil(turn, std::chrono::seconds(100)))
        giveUp("the printers do not end");
}

/// How many different lines of the printers there are.
std::size_t countPrinted(const std::vector<std::string> &lines)
{
    std::map<std::string, int> seen;
    for (const std::string &line : lines) {
        const std::size_t mark = line.find('#');
        if (mark != std::string::npos)
            ++seen[line.substr(mark)];
    }
    for (const auto &[text, times] : seen)
        EXPECT_EQ(times, 1) << text;
    return seen.size();
}

class QueueThreads : public ::testing::Test
{
protected:
    QueueThreads() { host.store("serverPort", 0); }
    ~QueueThreads() override
    {
        for (int i = 0; i < 3; ++i)
            Debug::exitDebug();
    }

    MapHost host;
    std::optional<TestApplication<QCoreApplication>> application{std::in_place};
};

TEST_F(QueueThreads, PrintWhileTheQueueIsSwitchedAndCleared)
{
    Debug::initDebug();
    Debug::enableSettings(QStringLiteral("allowProgrammaticClear,"));
    int round = 0;
    printBeside([&round] {
        inWorker([&round] {
            Debug::setClientsAllowed(++round % 2);
            Debug::setWindowTitle(QString::number(round));
            Debug::clientsAllowed();
            Debug::queueRedraw();
            Debug::queueRebuild();
            Debug::showDebugWindow();
            return 0;
        });
        Debug::setClientCount(round % 3);
        Debug::setServerMode(round % 2);
        Debug::clear();
    });
    EXPECT_EQ(countPrinted(host.takeLines()), 1U * printers * linesPerPrinter);
}

TEST_F(QueueThreads, PrintWhileTheLibraryStopsAndStarts)
{
    Debug::initDebug(); // helgrind does not see that statics are made by one thread: let it be this one
    Debug::exitDebug();
    int round = 0;
    printBeside([&round] {
        if (++round % 2)
            Debug::initDebug();
        else
            Debug::exitDebug();
    });
    std::vector<std::string> lines = host.takeLines();
    const auto log = linesOf(readFile(libraryFile("GYX-syslog-0.log"))); // what came while it was down
    lines.insert(lines.end(), log.begin(), log.end());
    EXPECT_EQ(countPrinted(lines), 1U * printers * linesPerPrinter);
}

TEST_F(QueueThreads, MakeTheQueueThatTheLoopServes)
{
    // The loop may find the start of a queue whose maker is not done with it yet.
    host.store("serverPortOpen", 1);
    for (int round = 0; round < 10; ++round) {
        application.reset();
        Debug::initDebug();
        application.emplace();
        std::atomic<bool> begin{false};
        Crew crew(2, [&begin](int) {
            while (!begin)
                std::this_thread::yield();
            Debug::println(kernel, 0, QStringLiteral("first line"), 0);
        });
        begin = true;
        EXPECT_TRUE(runUntil([&] { return host.reads("serverPortOpen") > round; })) << "round " << round;
        EXPECT_TRUE(runUntil(&Debug::clientsAllowed));
        crew.join();
        EXPECT_EQ(host.reads("showWindow"), round + 1) << "one queue for both";
    }
}

/// Prints whatever is delivered, also while the library makes its queue.
class PrintingApplication : public QCoreApplication
{
public:
    using QCoreApplication::QCoreApplication;
    bool notify(QObject *receiver, QEvent *event) override
    {
        Debug::println(kernel, 0, QStringLiteral("event"), 0);
        return QCoreApplication::notify(receiver, event);
    }
};

TEST_F(QueueThreads, MakeTheQueueInAnApplicationThatPrintsItsEvents)
{
    for (int round = 0; round < 3; ++round) {
        application.reset();
        Debug::initDebug();
        const TestApplication<PrintingApplication> printing;
        inWorker([] {
            Debug::println(kernel, 0, QStringLiteral("#0:0"), 0);
            return 0;
        });
        EXPECT_EQ(countPrinted(host.takeLines()), 1U);
    }
}

TEST_F(QueueThreads, AreToldThatThereAreNoWidgets)
{
    Debug::initDebug();
    QCoreApplication::processEvents();
    const auto ask = [] {
        const QString text = QStringLiteral("text");
        Debug::debugFileSelect(text, text, text);
        return Debug::debugMessageBox(text, text, true, 0, 1, 0, 0);
    };
    EXPECT_EQ(inWorker(ask), -1);
    EXPECT_EQ(host.linesWith("++++ message boxes are not usable outside an QT application!"), 1);
    EXPECT_EQ(ask(), -1);
    EXPECT_EQ(host.linesWith("++++ file selectors boxes are not usable outside an QT application!"), 1);
}

} // namespace
