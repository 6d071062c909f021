// The end of the library while boxes are open, from wherever it comes, and what starts after it.

#include "boxtest.h"

#include <QPointer>

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
    for (int round = 0; round < 3; ++round) {
        const int box = openBox(ok);
        EXPECT_GT(openBox(0), box);
        if (round == 1)
            Debug::removeMessageBox(box); // on its way
        Debug::exitDebug();
        EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); })) << "round " << round;
        Debug::removeMessageBox(box);
        expectBoxesWorkAgain();
    }
}

TEST_F(Ends, OfTheLibraryInAWorkerLeaveTheLoopIntact)
{
    openBox(ok);
    inWorker([] {
        Debug::removeMessageBox(100);
        Debug::exitDebug();
        return 0;
    });
    EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); }));
    expectBoxesWorkAgain();
}

TEST_F(Ends, OfTheLibraryInsideAModalBoxLetItsCallerGoOn)
{
    openBox(ok);
    robot->then([](QDialog &box) {
        const QPointer<QDialog> shown(&box);
        Debug::exitDebug();
        runOn();
        if (shown)
            shown->close();
    });
    EXPECT_EQ(ask(true, ok), -1);
    expectBoxesWorkAgain();
}

TEST_F(Ends, OfTheLibraryInsideABoxOfAWorkerAnswerTheWorker)
{
    robot->then([](QDialog &box) {
        const QPointer<QDialog> shown(&box);
        Debug::exitDebug();
        Debug::initDebug(); // a new queue beside the old one
        runOn();
        if (shown)
            shown->close();
    });
    EXPECT_EQ(inWorker([] { return ask(true, ok); }), -1);
    expectBoxesWorkAgain();
    Debug::exitDebug();
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
