// The debug window on the road of the lines: when it comes, what it gets, and how it ends.

#include "boxtest.h"
#include "debugwindow/debugwindow.h"
#include "leakanalyzer/analysisoutput.h"
#include "public/hookrecorder.h"
#include "support/crew.h"
#include "support/remoteclient.h"

#include <QComboBox>
#include <QPointer>
#include <QPushButton>

#include <cstdio>
#include <map>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

void print(const QString &text)
{
    Debug::println(kernel, 0, text, 0);
}

void print(const char *text)
{
    print(QString::fromLatin1(text));
}

bool shows(const std::string &text)
{
    return windowText().find(text) != std::string::npos;
}

QByteArray textOf(const DebugWindow &window)
{
    QByteArray text;
    window.forEachPiece(1 << 30, [&text](const QByteArray &piece) {
        text += piece;
        return true;
    });
    return text;
}

class Window : public BoxTest
{
protected:
    void waitForWindow()
    {
        print("first");
        ASSERT_TRUE(runUntil([] { return shows("first"); }));
    }
    static QPushButton *button(const char *text)
    {
        for (QPushButton *const each : debugWindow()->findChildren<QPushButton *>()) {
            if (each->text() == QLatin1String(text))
                return each;
        }
        giveUp(text);
    }
    static std::string hooksInWindow()
    {
        const auto *const hooks = debugWindow()->findChild<QComboBox *>();
        std::string all;
        for (int i = 0; i < hooks->count(); ++i)
            all += hooks->itemText(i).toStdString() + ' ';
        return all;
    }
};

TEST_F(Window, ComesWithTheFirstLineAndAfterwardsOnlyWhenAskedFor)
{
    runOn();
    EXPECT_EQ(debugWindow(), nullptr);
    Debug::setWindowTitle(QStringLiteral("before"));
    waitForWindow();
    EXPECT_TRUE(debugWindow()->isVisible());
    EXPECT_EQ(debugWindow()->windowTitle(), QStringLiteral("before"));
    debugWindow()->close();
    print("while it is closed");
    EXPECT_TRUE(runUntil([] { return shows("while it is closed"); }));
    EXPECT_FALSE(debugWindow()->isVisible());
    Debug::showDebugWindow();
    EXPECT_TRUE(runUntil([] { return debugWindow()->isVisible(); }));
    debugWindow()->showMinimized();
    Debug::setWindowTitle(QStringLiteral("after"));
    Debug::showDebugWindow();
    EXPECT_TRUE(runUntil([] { return !debugWindow()->isMinimized(); }));
    EXPECT_EQ(debugWindow()->windowTitle(), QStringLiteral("after"));
}

TEST_F(Window, ShowsWhatWasPrintedBeforeAModalBoxAndIsEmptiedByClearIfThatIsAllowed)
{
    print("before the box");
    robot->then([](QDialog &box) {
        EXPECT_TRUE(shows("before the box"));
        box.close();
    });
    ask(true, ok);
    Debug::exitDebug();
    Debug::initDebug();
    print("before the start event");
    robot->then([](QDialog &box) { box.close(); });
    EXPECT_EQ(ask(true, ok), -1);
    EXPECT_TRUE(runUntil([] { return shows("before the start event"); }));
    qCritical("of Qt");
    EXPECT_TRUE(runUntil([] { return shows("++++ QCritical: of Qt"); }));
    for (const bool allowed : {false, true}) {
        Debug::enableSettings(allowed ? QStringLiteral("allowProgrammaticClear,") : QString());
        print("text");
        EXPECT_TRUE(runUntil([] { return shows("text"); }));
        print("on its way");
        Debug::clear();
        print("behind");
        EXPECT_TRUE(runUntil([] { return shows("behind"); }));
        EXPECT_EQ(shows("text"), !allowed);
        EXPECT_EQ(shows("on its way"), !allowed);
    }
}

TEST_F(Window, GetsTheLinesOfFourThreadsOnceWhileItIsUsedAndTheLibraryEndsUnderIt)
{
    constexpr int threads = 4;
    DebugWindow supplied(QStringLiteral("host"));
    Debug::exitDebug();
    Debug::setExtWindow(&supplied);
    Debug::initDebug();
    ::testing::internal::CaptureStdout();
    std::atomic<bool> enough{false};
    std::atomic<int> printed{0};
    Crew printers(threads, [&](int thread) {
        for (int number = 0; !enough; ++number, ++printed)
            print(QStringLiteral("#%1:%2").arg(thread).arg(number));
    });
    EXPECT_TRUE(runUntil([&] {
        supplied.resize(600 + printed % 100, 300);
        return textOf(supplied).count('\n') > 1000;
    }));
    Debug::exitDebug(); // what comes then, until there are no modules any more, is for the standard output
    waitIdle([&, goal = printed + 100] { return printed > goal; });
    enough = true;
    printers.join();
    const QByteArray inWindow = textOf(supplied);
    const QByteArray all =
        inWindow + '\n' + QByteArray::fromStdString(testing::internal::GetCapturedStdout());
    std::map<int, int> next;
    for (const QByteArray &line : all.split('\n')) {
        int thread = 0;
        int number = 0;
        if (std::sscanf(line.mid(line.lastIndexOf('#')).constData(), "#%d:%d", &thread, &number) == 2) {
            ASSERT_EQ(number, next[thread]++) << "thread " << thread;
        }
    }
    EXPECT_EQ(next.size(), static_cast<std::size_t>(threads));
    EXPECT_TRUE(supplied.isVisible()) << "the host's to close and to delete";
}

TEST_F(Window, GivesItsTextToTheFirstClientAndTakesTheLinesAfterTheLast)
{
    waitForWindow();
    print("second");
    RemoteClient client(openRemoteAccess(host));
    EXPECT_TRUE(client.waitForGreeting());
    const QByteArray text = client.takeUntil("\r\n");
    EXPECT_TRUE(text.contains("first\n") && text.contains("second\n")) << text.toStdString();
    EXPECT_EQ(windowText(), "");
    EXPECT_FALSE(button("Settings...")->isEnabled());
    EXPECT_TRUE(button("Clear Log")->isEnabled());
    print("for the client");
    EXPECT_TRUE(client.waitFor("for the client"));
    client.close();
    EXPECT_TRUE(runUntil([] { return button("Settings...")->isEnabled(); }));
    print("for the window");
    EXPECT_TRUE(runUntil([] { return shows("for the window"); }));
    EXPECT_FALSE(shows("for the client"));
    Debug::setClientCount(1); // somebody only says so
    EXPECT_FALSE(button("Settings...")->isEnabled());
    EXPECT_TRUE(shows("for the window"));
}

TEST_F(Window, FollowsHooksAndModesOfTheProcess)
{
    HookRecorder recorder;
    Debug::installHook("alpha", &recorder, false);
    waitForWindow();
    EXPECT_NE(hooksInWindow().find("alpha "), std::string::npos) << hooksInWindow();
    int count = 0;
    const QString *const keys = Debug::getHooks(count);
    inWorker([&] {
        Debug::installHook("beta", &recorder, true);
        return 0;
    });
    EXPECT_TRUE(runUntil([] { return hooksInWindow().find("alpha beta ") != std::string::npos; }));
    EXPECT_EQ(keys[0].front(), QLatin1Char('D')) << "the window lists its own";

    std::atomic<bool> go{false};
    recorder.onCall = [&go](char *, char *) { waitIdle([&go] { return go.load(); }); };
    Debug::activateHooks("alpha", "");
    EXPECT_FALSE(button("activate")->isEnabled()) << "no second one is started meanwhile";
    go = true;
    EXPECT_TRUE(runUntil([] { return button("activate")->isEnabled(); }));
    button("activate")->setFocus();
    Debug::activateHooks("DebugServerSettingsChangedHook", ""); // has a thread, too
    runOn();
    EXPECT_TRUE(button("activate")->hasFocus());

    Debug::setServerMode(true);
    EXPECT_FALSE(button("Output Off")->isEnabled());
    Debug::createModule("DebugServerClient", "Client");
    runOn();
    EXPECT_TRUE(Debug::isActive(kernel, 0, 0)) << "in server mode the output goes on";
    inWorker([] {
        Debug::setServerMode(false);
        Debug::createModule("DebugServerClient", "Client");
        return 0;
    });
    EXPECT_EQ(Debug::getEnabledSettings(), QStringLiteral("disableOutput,"));
    EXPECT_TRUE(runUntil([] { return button("Output Off")->isEnabled(); }));
    Debug::createModule("DebugServerClient", "Client");
    Debug::enableClasses(kernel, QStringLiteral("all"));
    runOn();
    EXPECT_EQ(Debug::getEnabledSettings(), QString()) << "only what came before is switched off";
}

TEST_F(Window, EndsWithTheLibraryFromWhereverThatComes)
{
    for (const char *const place : {"loop", "worker", "window"}) {
        waitForWindow();
        const QPointer<QWidget> window = debugWindow();
        HookRecorder ender;
        ender.onCall = [](char *, char *) { Debug::exitDebug(); };
        Debug::installHook("end", &ender, true);
        if (std::string(place) == "window") {
            auto *const hooks = window->findChild<QComboBox *>();
            EXPECT_TRUE(runUntil([&] { return hooks->findText(QStringLiteral("end")) >= 0; }));
            hooks->setCurrentText(QStringLiteral("end"));
            button("activate")->click();
        } else if (std::string(place) == "worker") {
            inWorker([] {
                Debug::exitDebug();
                return 0;
            });
        } else {
            Debug::exitDebug();
        }
        EXPECT_TRUE(runUntil([&] { return window.isNull(); })) << place;
        Debug::initDebug();
    }
    waitForWindow();
    Debug::setOutputReceiver(-1, [](hookData *) {}); // keeps the library up, beyond the application
    endApplication();
    Debug::setOutputReceiver(-1, nullptr);
}

/// Ends the library at one of the events that windows get.
class Ender : public QObject
{
public:
    explicit Ender(int event)
        : m_left(event)
    {
        qApp->installEventFilter(this);
    }
    [[nodiscard]] bool hasEnded() const { return m_left < 0; }
    bool eventFilter(QObject *watched, QEvent *) override
    {
        if (m_left >= 0 && watched->isWidgetType() && m_left-- == 0)
            Debug::exitDebug();
        return false;
    }

private:
    int m_left;
};

TEST_F(Window, EndsWithTheLibraryAtAnyEventWhileItIsMade)
{
    for (const bool loopIsKnown : {true, false}) {
        bool hasEnded = true;
        for (int event = 0; hasEnded; event += 7) {
            {
                const Ender ender(event);
                if (!loopIsKnown)
                    Debug::eventLoopFinished();
                print("line");
                EXPECT_TRUE(runUntil([&] { return ender.hasEnded() || shows("line"); }));
                hasEnded = ender.hasEnded();
            }
            if (!hasEnded)
                Debug::exitDebug();
            runOn();
            Debug::initDebug();
            QCoreApplication::processEvents();
        }
    }
}

TEST_F(Window, ShowsLinesThatComeWhileItIsMade)
{
    host.onRead = [&](const QString &key) {
        if (key != QLatin1String("windowTitle"))
            return;
        host.onRead = nullptr;
        print("while it is made");
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    };
    Debug::showDebugWindow();
    EXPECT_TRUE(runUntil([] { return shows("while it is made"); }));
}

TEST_F(Window, IsDeletedWithAnApplicationThatHasNoLoop)
{
    print("line");
    while (debugWindow() == nullptr)
        QCoreApplication::processEvents();
    const QPointer<QWidget> window = debugWindow();
    Debug::exitDebug();
    EXPECT_FALSE(window && window->isVisible());
    endApplication();
    EXPECT_TRUE(window.isNull());
}

TEST_F(Window, OfTheHostServesEachQueueAnewUntilItIsDeleted)
{
    auto supplied = std::make_unique<DebugWindow>(QStringLiteral("host"));
    Debug::exitDebug();
    Debug::setExtWindow(supplied.get());
    for (const int clients : {1, 0}) {
        Debug::initDebug();
        Debug::setClientCount(clients);
        Debug::setServerMode(clients == 0);
        waitForWindow();
        EXPECT_EQ(debugWindow(), supplied.get());
        EXPECT_EQ(button("Settings...")->isEnabled(), clients == 0);
        EXPECT_FALSE(button("Output Off")->isEnabled());
        Debug::exitDebug();
        EXPECT_TRUE(supplied->isVisible());
        supplied->clearText();
    }
    supplied.reset();
    Debug::initDebug();
    waitForWindow();
}

TEST_F(Window, ShowsTheTextsOfTheAnalysisToolsUntilTheHostTakesThem)
{
    class Texts : public IAnalysisOutputInterface
    {
    public:
        void textOutput(const char *, int, const char *text) override { all += text; }
        void summary(int, qint64, qint64, qint64, quint64, quint64) override {}
        void tableRow(int, const char *, quint64, int, quint64, qint64, qint64) override {}
        void tableComplete() override {}
        std::string all;
    } texts;
    installanalysisMessageHandler(&texts);
    waitForWindow();
    analysis::emitText("tools", 1, "to the window %d\n", 1);
    EXPECT_TRUE(runUntil([] { return shows("to the window 1"); }));
    Debug::exitDebug();
    EXPECT_FALSE(analysis::hasOutputHandler());

    Debug::initDebug();
    waitForWindow();
    installanalysisMessageHandler(&texts);
    Debug::exitDebug();
    analysis::emitText(nullptr, 1, "to the %s", "host");
    EXPECT_EQ(texts.all, "to the host");
    installanalysisMessageHandler(nullptr);
}

TEST_F(Window, StoresNothingOfALibraryThatHasEnded)
{
    waitForWindow();
    for (const char *const place : {"DebugAnalysisWindowGeometry", "DebugServerDebugClasses"}) {
        host.onRead = [place](const QString &key) {
            if (key == QLatin1String(place))
                Debug::exitDebug();
        };
        QMetaObject::invokeMethod(debugWindow(), "makeDefault");
        host.onRead = nullptr;
        EXPECT_EQ(host.stored("DebugServerFileSize"), QString()) << place;
        Debug::initDebug();
        waitForWindow();
    }
}

TEST_F(Window, LosesNothingWhenTheHostEndsTheLibraryWhileItIsMade)
{
    for (const bool startsAgain : {false, true}) {
        host.onRead = [&](const QString &key) {
            if (key != QLatin1String("windowTitle"))
                return;
            host.onRead = nullptr;
            print("while it is made");
            Debug::exitDebug();
            if (startsAgain)
                Debug::initDebug();
        };
        ::testing::internal::CaptureStdout();
        print("first");
        runOn();
        runOn();
        const std::string written = testing::internal::GetCapturedStdout();
        EXPECT_NE(written.find("first\n"), std::string::npos);
        EXPECT_NE(written.find("while it is made\n"), std::string::npos);
        EXPECT_EQ(debugWindow(), nullptr);
        if (!startsAgain)
            Debug::initDebug();
    }
    waitForWindow();
}

} // namespace
