// The end of the library while boxes are open, from wherever it comes, and what starts after it.

#include "boxtest.h"

#include <QSignalSpy>
#include <QTextEdit>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

class Ends : public BoxTest
{
protected:
    void expectBoxesWorkAgain()
    {
        Debug::initDebug();
        QCoreApplication::processEvents();
        robot->click("OK");
        EXPECT_EQ(ask(true, ok), ok);
        robot->click("Cancel");
        EXPECT_EQ(inWorker([] { return ask(true, ok, cancel); }), cancel);
    }
};

TEST_F(Ends, OfTheLibraryTakeOpenBoxesAway)
{
    for (int round = 0; round < 4; ++round) {
        const int box = openBox(ok);
        EXPECT_GT(openBox(0), box);
        if (round == 1)
            Debug::removeMessageBox(box); // on its way
        const auto end = [round] {
            Debug::removeMessageBox(100);
            Debug::exitDebug();
            return round;
        };
        EXPECT_EQ(round == 2 ? inWorker(end) : end(), round);
        for (const QDialog *const dialog : allDialogs())
            EXPECT_TRUE(round == 2 || !dialog->isVisible()) << "the caller may stay where it is";
        EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); })) << "round " << round;
        Debug::removeMessageBox(box);
        expectBoxesWorkAgain();
    }
}

TEST_F(Ends, OfTheLibraryInsideAModalBoxAnswerWhoeverAsked)
{
    const auto askOne = [] { return ask(true, ok); };
    for (const bool asWorker : {false, true}) {
        openBox(ok);
        for (const bool startsAgain : {false, true}) {
            robot->then([startsAgain](QDialog &) {
                Debug::exitDebug();
                if (startsAgain)
                    Debug::initDebug(); // a new queue beside the old one
                runOn();
            });
            EXPECT_EQ(asWorker ? inWorker(askOne) : askOne(), -1);
            EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); }));
            expectBoxesWorkAgain();
            if (startsAgain)
                Debug::exitDebug();
        }
    }
}

/// A hook that asks its user.
class Asker : public IHookInterface
{
public:
    bool forFile = false;
    std::atomic<bool> isAnswered{false};

    void hookActivated(char *, char *) override
    {
        const int answer = forFile ? askFile() : ask(true, ok);
        isAnswered = answer == -1;
    }

private:
    static int askFile() { return Debug::debugFileSelect({}, {}, {}).isEmpty() ? -1 : 0; }
};

TEST_F(Ends, OfTheLibraryAnswerTheQuestionsOfHooksAtOnce)
{
    for (const bool forFile : {false, true}) {
        Asker asker;
        asker.forFile = forFile;
        Debug::installHook("ask", &asker, false);
        robot->then([&](QDialog &) {
            const auto begin = std::chrono::steady_clock::now();
            Debug::exitDebug();
            EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2))
                << "the hook's limit";
            EXPECT_TRUE(asker.isAnswered) << "for file: " << forFile;
        });
        Debug::activateHooks("ask", "");
        EXPECT_TRUE(runUntil([&] { return robot->left() == 0 && allDialogs().isEmpty(); }));
        EXPECT_TRUE(asker.isAnswered);
        Debug::initDebug();
        QCoreApplication::processEvents();
    }
}

TEST_F(Ends, OfApplicationsAreNotDecidedByWindowsOfTheLibrary)
{
    const QSignalSpy lastClosed(qApp, &QGuiApplication::lastWindowClosed); // sent by exec() alone
    QTimer::singleShot(0, [this] {
        robot->close();
        Debug::debugFileSelect({}, {}, {});
        robot->close();
        Debug::activateHooks("DebugServer_testMessage", "");
        for (QWidget *const window : QApplication::topLevelWidgets())
            window->close(); // the editor
        for (const bool modal : {true, false}) {
            robot->close();
            ask(modal, ok);
        }
        runOn();
        QCoreApplication::exit(3);
    });
    EXPECT_EQ(QCoreApplication::exec(), 3);
    EXPECT_TRUE(lastClosed.isEmpty()) << "none of them was the last window of the host";
}

TEST_F(Ends, OfApplicationsDoNotWaitForBoxesWithoutButtons)
{
    openBox(0);
    QWidget ofHost;
    ofHost.show();
    QTimer::singleShot(0, &ofHost, &QWidget::close);
    QTimer::singleShot(5000, [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0) << "its user could not close it";
    endApplication();
}

TEST_F(Ends, OfApplicationsDoNotHurtTheNextOne)
{
    for (int round = 0; round < 3; ++round) {
        openBox(ok);
        QTimer::singleShot(0, [] { QCoreApplication::quit(); });
        if (round > 0)
            QCoreApplication::exec(); // round 0: a host that runs its loop by itself and never says so
        if (round == 2)
            Debug::setOutputReceiver(-1, [](hookData *) {}); // takes the output, keeps the library up
        endApplication();
        EXPECT_EQ(ask(true, ok), round == 2 ? 0 : -1);
        Debug::setOutputReceiver(-1, nullptr);
        if (round == 1) { // in between the library is used without one
            Debug::initDebug();
            Debug::eventLoopStarted();
            Debug::exitDebug();
        }
        application.emplace();
        robot.emplace();
        Debug::initDebug();
        EXPECT_EQ(ask(true, ok), -1) << "its loop has not begun";
        expectBoxesWorkAgain();
    }
}

TEST_F(Ends, OfAThreadThatStillPrintsAreNoneOfTheLibrarysBusiness)
{
    // Others print and ask while main() leaves without any end.
    std::atomic<bool> enough{false};
    std::thread other([&] {
        while (!enough) {
            Debug::println(kernel, 0, QStringLiteral("line"), 0);
            Debug::removeMessageBox(ask(false, ok));
        }
    });
    for (int i = 0; i < 1000; ++i)
        robot->leaveOpen();
    ASSERT_TRUE(runUntil([this] { return robot->left() < 997; }));
    endApplication();
    enough = true;
    other.join();
}

} // namespace
