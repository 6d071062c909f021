// Requests that cannot be served: nobody may wait for ever.

#include "boxtest.h"
#include "support/crew.h"

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

const char *const noQt = "++++ message boxes are not usable outside an QT application!";
const char *const noLoop = "++++ trying to use a messagebox without having a running event loop!";

class Requests : public BoxTest
{
protected:
    /// What a worker gets that asks while the loop is busy with \a end, and waits beyond.
    template <typename Question>
    auto answerAcross(Question question, const char *setting, const std::function<void()> &end)
    {
        std::optional<decltype(question())> answer;
        const int before = host.reads(setting);
        std::thread asker([&] { answer = question(); });
        waitIdle([&] { return host.reads(setting) > before; });
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // most likely it waits now; both must do
        end();
        asker.join();
        return *answer;
    }
    static void runLoopOnce()
    {
        QTimer::singleShot(0, &QCoreApplication::quit);
        QCoreApplication::exec();
    }
};

TEST_F(Requests, WithoutAnApplicationAreRefused)
{
    Debug::exitDebug();
    endApplication();
    EXPECT_EQ(ask(true, ok), -1) << "before the start";
    Debug::removeMessageBox(2);
    Debug::showDebugWindow();
    Debug::initDebug();
    Debug::showDebugWindow();
    host.takeLines();
    EXPECT_EQ(ask(false, ok), -1);
    EXPECT_EQ(host.linesWith(noQt), 1);
    Debug::removeMessageBox(2);
    EXPECT_EQ(host.linesWith(noQt), 1);
    host.store("enableMessageBoxes", 0);
    Debug::removeMessageBox(2);
    EXPECT_EQ(ask(true, ok), 0);
    EXPECT_EQ(host.linesWith(noQt), 0);
}

TEST_F(Requests, WithoutALoopAreRefusedUntilItRuns)
{
    Debug::exitDebug();
    Debug::eventLoopFinished();
    EXPECT_EQ(ask(true, ok), -1) << "before the start";
    Debug::initDebug();
    host.takeLines();
    EXPECT_EQ(ask(true, ok), -1) << "the loop is not known to run yet";
    std::optional<int> answer;
    std::thread([&] { answer = ask(true, ok); }).join();
    EXPECT_EQ(answer, -1);
    EXPECT_EQ(host.linesWith(noLoop), 2);
    QCoreApplication::processEvents();
    robot->click("OK");
    EXPECT_EQ(ask(true, ok), ok);
    runLoopOnce();
    EXPECT_EQ(ask(true, ok), -1);
    EXPECT_EQ(inWorker([] { return ask(false, ok); }), -1);
    EXPECT_EQ(host.linesWith(noLoop), 2);
    Debug::eventLoopStarted();
    robot->click("OK");
    EXPECT_EQ(inWorker([] { return ask(true, ok); }), ok) << "the host says that there is another loop";
}

TEST_F(Requests, AreAnsweredWhateverEndsWhileTheyWait)
{
    const auto endApplicationOnly = [this] { endApplication(); };
    const auto startAgain = [this] {
        if (!application) {
            application.emplace();
            robot.emplace();
        }
        Debug::exitDebug(); // surplus if the library has ended
        Debug::initDebug();
        QCoreApplication::processEvents();
        Debug::eventLoopStarted();
    };
    const std::function<void()> ends[] = {
        &Debug::eventLoopFinished, &Debug::exitDebug, endApplicationOnly, [&] {
            Debug::setOutputReceiver(-1, [](hookData *) {}); // keeps the library up, not the widgets
            endApplication();
        }};
    for (const std::function<void()> &end : ends) {
        EXPECT_EQ(answerAcross([] { return ask(true, ok); }, "enableMessageBoxes", end), -1);
        Debug::setOutputReceiver(-1, nullptr);
        startAgain();
    }
    const auto select = [] { return Debug::debugFileSelect(QString(), QString(), QString()); };
    EXPECT_EQ(answerAcross(select, "enableFileSelect", endApplicationOnly), QString());
}

class CountingHandler : public IMessageBoxInterface
{
public:
    std::atomic<int> shown{0};
    void showMessage(const QString &) override { ++shown; }
};

TEST_F(Requests, OfManyThreadsAreAllAnsweredWhileLoopsEnd)
{
    CountingHandler handler;
    Debug::installMessageBoxHandler(&handler);
    std::atomic<bool> enough{false};
    std::atomic<int> taken{0};
    std::atomic<int> refused{0};
    Crew askers(4, [&](int asker) {
        while (!enough)
            ++(ask(asker % 2 == 0, ok) == 1 ? taken : refused);
    });
    for (int round = 0; round < 20; ++round) {
        Debug::eventLoopStarted();
        const int before = taken;
        QTimer poll;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            if (taken > before + 5)
                QCoreApplication::quit();
        });
        poll.start(1);
        QCoreApplication::exec();
        const int refusedBefore = refused;
        waitIdle([&] { return refused > refusedBefore; });
    }
    enough = true;
    askers.join();
    EXPECT_EQ(taken, handler.shown);
    Debug::installMessageBoxHandler(nullptr);
}

int s_answer = 0;
bool s_fileAsked = false;

void askInCallback()
{
    s_answer = ask(true, ok);
    EXPECT_EQ(ask(false, ok), -1) << "never shown: nobody could take it away";
    s_fileAsked = Debug::debugFileSelect(QString(), QString(), QString()).isEmpty();
}

class AskingHost : public MapHost
{
public:
    void outputLine(const QString &line) override
    {
        MapHost::outputLine(line);
        if (line.endsWith(QLatin1String("ask")))
            askInCallback();
    }
};

TEST_F(Requests, OfACallbackInAWorkerAreRefused)
{
    // The worker holds what the loop needs for its own lines, and so cannot wait. Modal boxes come later.
    robot->click("OK");
    robot->click("OK");
    QTimer lines;
    QObject::connect(&lines, &QTimer::timeout,
                     [] { Debug::println(1, 0, QStringLiteral("of the loop"), 0); });
    lines.start(0);
    const auto printInWorker = [] {
        inWorker([] {
            Debug::println(kernel, 0, QStringLiteral("ask"), 0);
            return 0;
        });
    };
    Debug::setOutputReceiver(kernel, [](hookData *) { askInCallback(); });
    printInWorker();
    EXPECT_EQ(std::exchange(s_answer, 0), -1);
    EXPECT_TRUE(std::exchange(s_fileAsked, false));
    Debug::setOutputReceiver(kernel, nullptr);
    AskingHost asking;
    printInWorker();
    EXPECT_EQ(s_answer, -1);
    EXPECT_TRUE(s_fileAsked);
    EXPECT_TRUE(runUntil([this] { return robot->left() == 0 && allDialogs().isEmpty(); }));
    Debug::setUtilityCallbackHandler(&host);
}

} // namespace
