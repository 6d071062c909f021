// Message boxes that are shown: answers, boxes inside boxes, non-modal ones, and what stands in for a box.

#include "boxtest.h"

#include <QThread>

#include <map>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

using Boxes = BoxTest;

TEST_F(Boxes, AnswerWithTheCodeOfThePressedButton)
{
    const std::map<int, const char *> names = {{1, "OK"},    {2, "Cancel"}, {3, "Yes"},   {4, "No"},
                                               {5, "Abort"}, {6, "Retry"},  {7, "Ignore"}};
    for (const auto &[code, name] : names) {
        const int button = code;
        robot->click(name);
        EXPECT_EQ(ask(true, button), button);
        robot->click(name);
        EXPECT_EQ(inWorker([button] { return ask(true, button % 7 + 1, button); }), button);
    }
    robot->then([](QDialog &box) {
        EXPECT_EQ(buttonsOf(box), "Yes No Cancel");
        EXPECT_EQ(box.windowTitle(), QStringLiteral("caption"));
        clickButton(box, "No");
    });
    EXPECT_EQ(ask(true, yes, no, cancel), no);
    EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); })) << "boxes are deleted";
}

TEST_F(Boxes, AnswerMinusOneWhenClosedOtherwise)
{
    robot->close();
    EXPECT_EQ(ask(true, ok), -1);
    robot->close();
    EXPECT_EQ(inWorker([] { return ask(true, ok); }), -1);
    robot->then([](QDialog &box) { box.reject(); });
    EXPECT_EQ(ask(true, yes, no), -1);
    robot->then([](QDialog &box) {
        EXPECT_EQ(buttonsOf(box), "");
        box.close();
    });
    EXPECT_EQ(ask(true, 8), -1) << "an unknown code makes no button";
}

TEST_F(Boxes, OpenInsideEachOtherAndAnswerEachForItself)
{
    int inner = 0;
    int ofWorker = 0;
    QDialog *outerBox = nullptr;
    robot->then([&](QDialog &outer) {
        outerBox = &outer;
        inner = ask(true, yes, no);
        ofWorker = inWorker([] { return ask(true, retry, cancel); });
    });
    robot->then([&](QDialog &box) {
        clickButton(*outerBox, "Cancel"); // below the inner one
        clickButton(box, "No");
    });
    robot->click("Retry");
    EXPECT_EQ(ask(true, ok, cancel), cancel);
    EXPECT_EQ(inner, no);
    EXPECT_EQ(ofWorker, retry);
}

TEST_F(Boxes, ThatAreNotModalStayUntilTheyAreRemovedOrAnswered)
{
    const int first = openBox(ok);
    EXPECT_GE(first, 2) << "0 and 1 have meanings of their own";
    robot->leaveOpen();
    EXPECT_EQ(inWorker([] { return ask(false, ok, cancel); }), first + 1) << "nobody has answered it";
    EXPECT_EQ(openBox(0), first + 2);
    EXPECT_EQ(openBox(yes), first + 3);
    const QList<QDialog *> boxes = openDialogs();
    ASSERT_EQ(boxes.size(), 4);
    EXPECT_FALSE(boxes.first()->isModal());
    for (const int stranger : {first + 100, first - 1, 0, -1})
        Debug::removeMessageBox(stranger);
    inWorker([first] {
        Debug::removeMessageBox(first + 2);
        Debug::removeMessageBox(first + 2);
        return 0;
    });
    Debug::removeMessageBox(first);
    EXPECT_TRUE(runUntil([] { return allDialogs().size() == 2; }));
    QTimer::singleShot(0, [] {
        for (QDialog *const box : openDialogs()) {
            if (buttonsOf(*box) == "OK Cancel")
                clickButton(*box, "OK");
        }
    });
    EXPECT_TRUE(runUntil([] { return allDialogs().size() == 1; }));
}

TEST_F(Boxes, StayWhenOtherWindowsOfTheHostAreHidden)
{
    openBox(ok);
    robot->leaveOpen();
    {
        QDialog ofHost;
        ofHost.show();
        ASSERT_TRUE(runUntil([this] { return robot->left() == 0; }));
        ofHost.hide();
    }
    robot->click("OK");
    EXPECT_EQ(ask(true, ok), ok) << "a modal one beside it";
    runOn();
    ASSERT_EQ(openDialogs().size(), 1);
    QTimer::singleShot(0, openDialogs().first(), &QDialog::close);
    EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); })) << "closing removes a box";
}

TEST_F(Boxes, AreShownWhateverIdTheHostNamesForTheLoop)
{
    host.store("DebugServerDebugLevel", "full");
    Debug::exitDebug();
    Debug::initDebug();
    QCoreApplication::processEvents();
    int self = 0;
    for (void *const id : {static_cast<void *>(nullptr), static_cast<void *>(&self)}) {
        Debug::setGuiThreadId(id);
        host.takeLines();
        robot->click("OK");
        EXPECT_EQ(ask(true, ok), ok) << "the loop must not wait for itself";
        EXPECT_EQ(host.linesWith("++++ for correct usage of message boxes, you have to call "), id ? 0 : 1);
        robot->click("OK");
        const auto askAsLoop = [id] {
            Debug::setGuiThreadId(id ? QThread::currentThreadId() : nullptr);
            return ask(true, ok);
        };
        EXPECT_EQ(inWorker(askAsLoop), ok);
    }
    Debug::setGuiThreadId(nullptr);
    robot->close();
    Debug::debugFileSelect({}, {}, {});
    EXPECT_EQ(host.linesWith("++++ for correct usage of file selectors, you have to call "), 1);
}

TEST_F(Boxes, TakeNullTexts)
{
    robot->click("OK");
    EXPECT_EQ(Debug::debugMessageBox(QString(), QString(), QString(), true, -1, ok, -1, 1 << 30), ok);
    Debug::setUtilityCallbackHandler(nullptr);
    robot->click("OK");
    EXPECT_EQ(Debug::debugMessageBox(QString(), QString(), true, 99, ok, 0, 0), ok);
}

class Handler : public IMessageBoxInterface
{
public:
    QStringList texts;
    QThread *thread = nullptr;

    void showMessage(const QString &text) override
    {
        texts.append(text);
        thread = QThread::currentThread();
    }
};

TEST_F(Boxes, GiveWayToAHandlerOfTheHost)
{
    Handler handler;
    Debug::installMessageBoxHandler(&handler);
    EXPECT_EQ(ask(true, cancel), 1);
    EXPECT_EQ(ask(false, cancel), 1);
    EXPECT_EQ(inWorker([] {
                  return Debug::debugMessageBox(QStringLiteral("caption"), QStringLiteral("heading"),
                                                QStringLiteral("of a worker"), true, 0, yes, 0, 0);
              }),
              1);
    EXPECT_EQ(handler.thread, QThread::currentThread());
    const QString message = QStringLiteral("message");
    EXPECT_EQ(handler.texts, QStringList({message, message, QStringLiteral("of a worker")}));
    Debug::installMessageBoxHandler(nullptr);
    robot->click("Cancel");
    EXPECT_EQ(ask(true, cancel), cancel);
}

TEST_F(Boxes, AreSilentIfTheHostForbidsThem)
{
    Debug::exitDebug();
    host.boxesAllowed = false;
    Debug::initDebug();
    QCoreApplication::processEvents();
    EXPECT_EQ(ask(true, cancel), 1);
    EXPECT_EQ(inWorker([] { return ask(false, cancel); }), 1);
    Debug::exitDebug();
    host.boxesAllowed = true;
    Debug::initDebug();
    QCoreApplication::processEvents();
    robot->click("Cancel");
    EXPECT_EQ(ask(true, cancel), cancel) << "forgotten with the next start";
}

class Manager : public IInformationManager
{
public:
    QStringList seen;
    void showInformation(const QString &caption, const QString &text) override
    {
        seen.append(caption + QLatin1Char('|') + text);
    }
};

class ManagedHost : public MapHost
{
public:
    Manager manager;
    IInformationManager *informationManager() override { return &manager; }
};

TEST_F(Boxes, AreToldToTheInformationManagerBeforeAnythingElseIsAsked)
{
    ManagedHost managed;
    const auto askLong = [] {
        return Debug::debugMessageBox(QStringLiteral("c"), QStringLiteral("head"), QStringLiteral("m"), true,
                                      0, ok, 0, 0);
    };
    managed.store("enableMessageBoxes", 0);
    EXPECT_EQ(ask(true, ok), 0);
    EXPECT_EQ(askLong(), 0);
    const QStringList both{QStringLiteral("caption|message"), QStringLiteral("c|<h3>head</h3>m")};
    EXPECT_EQ(managed.manager.seen, both);
    Debug::eventLoopFinished();
    EXPECT_EQ(ask(true, ok), 0) << "switched off comes before refused";
    managed.store("enableMessageBoxes", 1);
    EXPECT_EQ(ask(true, ok), -1);
    EXPECT_EQ(managed.manager.seen.size(), 4);
    managed.store("useInfomanager", 0);
    EXPECT_EQ(ask(true, ok), -1);
    Debug::eventLoopStarted();
    managed.store("useInfomanager", 1);
    Debug::setOutputReceiver(-1, [](hookData *) {});
    EXPECT_EQ(ask(true, ok), 0) << "somebody else has taken all output";
    Debug::setOutputReceiver(-1, nullptr);
    EXPECT_EQ(managed.manager.seen.size(), 4);
    robot->click("OK");
    EXPECT_EQ(ask(true, ok), ok);
    Debug::setUtilityCallbackHandler(&host);
}

} // namespace
