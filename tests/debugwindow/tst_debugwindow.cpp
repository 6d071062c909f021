// The debug window: what its controls do, what the host hears of it, and what it keeps from start to start.

#include "debugwindow/debugwindow.h"
#include "debugwindow/protocolwidget.h"
#include "host/outputswitch.h"
#include "public/hookrecorder.h"
#include "support/guiapplication.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <QClipboard>
#include <QComboBox>
#include <QFontDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;

QByteArray textOf(const CFilteredTextBuffer &buffer)
{
    QByteArray text;
    for (std::int64_t row = 0; row < buffer.rowCount(); ++row)
        text += (row > 0 ? "\n" : "") + buffer.text(row).toLatin1();
    return text;
}

/// Counts what it is told; may act on it.
struct KeyRecorder : IKeyInterface
{
    KeyRecorder() { Debug::installKeyHandler(this); }
    ~KeyRecorder() override { Debug::installKeyHandler(nullptr); }

    bool keyEvent(int key, int modifiers) override
    {
        told.push_back("key " + std::to_string(key) + ' ' + std::to_string(modifiers));
        onCall();
        return consumes;
    }
    void visibilityChanged(QWidget *, bool visible) override
    {
        told.emplace_back(visible ? "visible" : "hidden");
        onCall();
    }
    void activationChanged(QWidget *, bool active) override
    {
        told.emplace_back(active ? "active" : "inactive");
        onCall();
    }
    std::vector<std::string> take() { return std::exchange(told, {}); }

    bool consumes = false;
    std::function<void()> onCall = [] {};
    std::vector<std::string> told;
};
using Told = std::vector<std::string>;

class Window : public ::testing::Test
{
protected:
    Window()
    {
        host.store("noWindowOutput", 1); // no second window for the library's own lines
        Debug::initDebug();
        application.emplace();
        robot.emplace();
        host::installOutputSwitch([](bool on) { s_switched += on ? "on " : "off "; });
        open();
    }
    ~Window() override
    {
        EXPECT_EQ(robot->left(), 0U) << "fewer dialogs than expected";
        delete window;
        for (const char *const key :
             {"first", "second", "DebugServerSettingsChangedHook", "DebugServerWindowClosedHook"})
            Debug::removeHook(key, &hooks);
        Debug::exitDebug();
    }
    void open()
    {
        delete window;
        window = new DebugWindow(QStringLiteral("KLV debug window"));
    }
    QPushButton &button(const char *text)
    {
        for (QPushButton *const each : window->findChildren<QPushButton *>()) {
            if (each->text() == QLatin1String(text))
                return *each;
        }
        ADD_FAILURE() << "no button " << text;
        return *window->findChild<QPushButton *>();
    }
    QComboBox &selector(bool editable)
    {
        for (QComboBox *const each : window->findChildren<QComboBox *>(QString())) {
            if (each->isEditable() == editable)
                return *each;
        }
        std::abort();
    }
    QComboBox &hookNames() { return selector(false); }
    QComboBox &parameters() { return selector(true); }
    QProtocolWidget &view() { return *window->findChild<QProtocolWidget *>(); }
    void type(const char *text) { QTest::keyClicks(&parameters(), QLatin1String(text)); }
    /// Opens the settings menu and chooses an entry, or does something else with it.
    void inMenu(const std::function<void(QMenu &)> &act)
    {
        test::inMenu([this] { button("Settings...").click(); }, act);
    }
    void choose(const char *entry)
    {
        chooseInMenu([this] { button("Settings...").click(); }, entry);
    }

    MapHost host;
    HookRecorder hooks;
    std::optional<TestApplication<QApplication>> application;
    std::optional<Robot> robot;
    QPointer<DebugWindow> window;
    static std::string s_switched; // how the output was switched
};

std::string Window::s_switched;

TEST_F(Window, ComesAsItWasStoredAndGoesBackOnMakeDefault)
{
    const std::pair<const char *, const char *> stored[] = {
        {"DebugServerWindowGeometry", "120;90;640;240"},
        {"DebugAnalysisWindowGeometry", "1;2;3;4"},
        {"DebugServerDebugFont", "DejaVu Sans Mono"},
        {"DebugServerDebugFontSize", "11"},
        {"DebugServerDebugFontWeight", "75"},
        {"DebugServerGuiFont", "DejaVu Sans"},
        {"DebugServerGuiFontSize", "9"},
        {"DebugServerGuiFontWeight", "63"},
        {"DebugServerSavedLog", "/tmp/last.log"},
        {"DebugServerRegexpFilter", "xlevel"},
        {"DebugServerLevelsFilter", "Kernel|level"},
    };
    for (const auto &[key, value] : stored)
        host.store(key, value);
    host.store("windowTitle", "Bench 3");
    host.store("maxLines", 3);
    open();
    EXPECT_EQ(window->pos(), QPoint(112, 60));
    EXPECT_EQ(window->size(), QSize(640, 240));
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Bench 3"));
    EXPECT_EQ(view().font().pointSize(), 11);
    EXPECT_EQ(button("activate").font().family(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(Debug::getOutputFilter(), QStringLiteral("xlevel"));
    window->appendOutput("1\n2\n3\n4\n5");
    EXPECT_EQ(view().buffer().lineCount(), 3U);

    for (const auto &entry : stored)
        host.store(entry.first, "?");
    Debug::setDisplayFlags(-7); // the thread is shown
    Debug::installHook("DebugServerMakeDefaultHook", &hooks, true);
    window->makeDefault();
    EXPECT_EQ(hooks.takeCalls().size(), 1U);
    EXPECT_EQ(host.stored("DebugServerShowThreadID"), QStringLiteral("On"));
    EXPECT_EQ(host.stored("DebugServerShowModule"), QStringLiteral("Off"));
    host.store(stored[1].first, stored[1].second);
    for (const auto &[key, value] : stored)
        EXPECT_EQ(host.stored(key).toStdString(), value) << key;
    std::string keys;
    for (const std::string &key : host.written())
        keys += key + ' ';
    EXPECT_NE(keys.find("ShowThreadID DebugServerShowModule DebugServerConsoleOutput"), std::string::npos);
    window->setGeometry(20, 50, 500, 300);
    Debug::setClientMode();
    host.store("DebugServerRegexpFilter", "of the other process");
    choose("Make Default");
    EXPECT_EQ(host.stored("DebugServerWindowGeometry"), QStringLiteral("20;50;500;300"));
    EXPECT_EQ(host.stored("DebugServerRegexpFilter"), QStringLiteral("of the other process"));
    EXPECT_EQ(host.stored("DebugAnalysisWindowGeometry"), QStringLiteral("1;2;3;4"));
    host.store("DebugServerWindowGeometry", "8;30;600;300"); // in the corner, where maximised ones are, too
    open();
    window->showMaximized();
    window->makeDefault();
    EXPECT_EQ(host.stored("DebugServerWindowGeometry"), QStringLiteral("8;30;600;300"));
}

TEST_F(Window, DropsLinesWhileItsOutputIsOff)
{
    Debug::installHook("DebugServerSettingsChangedHook", &hooks, true);
    const qint64 onIcon = button("Output Off").icon().cacheKey();
    window->appendOutput("shown\nlines");
    EXPECT_EQ(button("Clear Log").toolTip(), QStringLiteral("2 lines inside log"));
    button("Output Off").click();
    EXPECT_NE(button("Output Off").icon().cacheKey(), onIcon);
    window->appendOutput("dropped");
    window->textOutput("file", 1, "dropped");
    QCoreApplication::processEvents();
    window->setOutputOn(true);
    window->setOutputOn(true);
    EXPECT_EQ(s_switched, "off on on ");
    window->appendOutput("back");
    EXPECT_EQ(textOf(view().buffer()), QByteArray("shown\nlines\nback"));
    button("Clear Log").click();
    EXPECT_EQ(textOf(view().buffer()), QByteArray());
    EXPECT_EQ(button("Clear Log").toolTip(), QStringLiteral("0 lines inside log"));
}

TEST_F(Window, DisablesWhatWouldCollideWithOthers)
{
    Debug::installHook("first", &hooks, true);
    window->refreshHooks();
    /// A letter for each control that can be used, from left to right.
    const auto usable = [this] {
        std::string letters;
        const std::pair<char, const QWidget *> controls[] = {
            {'O', &button("Output Off")}, {'C', &button("Clear Log")}, {'H', &hookNames()},
            {'P', &parameters()},         {'a', &button("activate")},  {'S', &button("Settings...")},
            {'A', &button("Analyze...")}};
        for (const auto &[letter, control] : controls) {
            if (control->isEnabled())
                letters += letter;
        }
        return letters;
    };
    EXPECT_EQ(usable(), "OCHPaSA");
    window->hookStarted();
    EXPECT_EQ(usable(), "OCHSA");
    window->setClientsConnected(true);
    EXPECT_EQ(usable(), "C");
    window->hookDone();
    EXPECT_EQ(usable(), "C");
    window->setClientsConnected(false);
    EXPECT_EQ(usable(), "OCHPaSA");
    Debug::setServerMode(true);
    window->updateModes();
    EXPECT_EQ(usable(), "CHaS");
    window->hookStarted();
    window->hookDone();
    EXPECT_EQ(usable(), "CHaS");
    Debug::setServerMode(false);
    window->updateModes();
    window->hookDone();
    EXPECT_EQ(window->focusWidget(), &parameters());
    Debug::setClientMode();
    window->updateModes();
    EXPECT_EQ(usable(), "OCHPaS");
    Debug::removeHook("first", &hooks);
}

TEST_F(Window, OffersTheHooksAndKeepsTheSelectedOne)
{
    Debug::installHook("second", &hooks, true);
    window->refreshHooks();
    const int narrow = hookNames().width();
    Debug::installHook("first", &hooks, true);
    Debug::installHook("another one with a long name", &hooks, true);
    window->refreshHooks();
    EXPECT_EQ(hookNames().count(), 3);
    EXPECT_EQ(hookNames().itemText(1), QStringLiteral("first"));
    EXPECT_EQ(hookNames().currentText(), QStringLiteral("second"));
    EXPECT_GT(hookNames().minimumWidth(), narrow);
    EXPECT_EQ(hookNames().minimumWidth(),
              hookNames().fontMetrics().horizontalAdvance(hookNames().itemText(0)) + 30);
    for (const char *const key : {"first", "second", "another one with a long name"})
        Debug::removeHook(key, &hooks);
    window->refreshHooks();
    EXPECT_EQ(hookNames().currentText(), QStringLiteral("no hooks defined"));
    Debug::installHook("no hooks defined", &hooks, true);
    window->hook();
    EXPECT_EQ(hooks.takeCalls(), Told());
    Debug::removeHook("no hooks defined", &hooks);
}

TEST_F(Window, RunsAHookWithTheTypedParametersOnReturn)
{
    Debug::installHook("first", &hooks, true);
    hooks.onCall = [](char *, char *) { EXPECT_FALSE(DebugWindow::isOutputIdle()); };
    window->refreshHooks();
    type("level -3,5 \xb5V");
    QTest::keyClick(&parameters(), Qt::Key_Return);
    parameters().setEditText(QStringLiteral("off"));
    QTest::keyClick(&parameters(), Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(hooks.takeCalls(), (Told{"first=level -3,5 \xb5V", "first=off"}));
    EXPECT_TRUE(DebugWindow::isOutputIdle());
    EXPECT_EQ(parameters().count(), 2);
    EXPECT_EQ(parameters().itemText(0), QStringLiteral("off"));
    window->hookStarted();
    QTest::keyClick(&parameters(), Qt::Key_Return);
    EXPECT_EQ(hooks.takeCalls(), Told());
}

TEST_F(Window, CompletesWhatIsTyped)
{
    for (const char *const text : {"frequency 2", "freq", "level 3"})
        window->enteredInput(QLatin1String(text));
    window->reset();
    const auto typed = [this](const char *text) {
        type(text);
        QCoreApplication::processEvents();
        return parameters().currentText().toStdString() + '|'
            + parameters().lineEdit()->selectedText().toStdString();
    };
    EXPECT_EQ(typed("l"), "level 3|evel 3");
    EXPECT_EQ(typed("e"), "level 3|vel 3");
    EXPECT_EQ(typed("x"), "lex|");
    window->reset();
    EXPECT_EQ(typed("fre"), "freq|q"); // the first in the list
    EXPECT_EQ(typed("qu"), "frequency 2|ency 2");
    QTest::keyClick(&parameters(), Qt::Key_Backspace); // shorter is not completed
    EXPECT_EQ(typed(""), "frequ|");
    EXPECT_EQ(typed("e"), "frequency 2|ncy 2");
    QTest::keyClick(&parameters(), Qt::Key_End);
    QTest::keyClick(&parameters(), Qt::Key_Backspace);
    EXPECT_EQ(typed(""), "frequency |") << "taken over, and then deleted from";
    window->reset();
    EXPECT_EQ(parameters().currentText(), QString());
}

TEST_F(Window, TellsTheKeyHandlerEachEventOnce)
{
    KeyRecorder keys;
    window->show();
    QApplication::setActiveWindow(window);
    EXPECT_EQ(keys.take(), (Told{"visible", "active"}));
    const std::string f5 = "key " + std::to_string(Qt::Key_F5) + ' ';
    QTest::keyClick(&view(), Qt::Key_F5);
    EXPECT_EQ(keys.take(), (Told{f5 + '0', f5 + '0'}));
    for (const bool isConsumed : {false, true}) {
        keys.consumes = isConsumed;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_F5, Qt::ShiftModifier);
        QCoreApplication::sendEvent(window, &press);
        EXPECT_EQ(press.isAccepted(), isConsumed);
        EXPECT_EQ(keys.take(), Told{f5 + std::to_string(Qt::ShiftModifier)});
    }
    QApplication::setActiveWindow(nullptr);
    window->showMinimized();
    window->showNormal();
    EXPECT_EQ(keys.take(), Told{"inactive"});
    window->showMinimized();
    window->hide();
    window->show();
    window->showNormal();
    EXPECT_EQ(keys.take(), Told{"visible"});
    window->hide();
    window->show();
    window->close();
    EXPECT_EQ(keys.take(), (Told{"visible", "hidden"}));
}

TEST_F(Window, KeepsItsOwnDialogsFromTheKeyHandler)
{
    window->show();
    QApplication::setActiveWindow(window);
    KeyRecorder keys;
    robot->close();
    choose("Set Output Font...");
    QApplication::setActiveWindow(window);
    EXPECT_EQ(keys.take(), Told());
    Q_EMIT view().modalStateChanged(true);
    QApplication::setActiveWindow(nullptr);
    Q_EMIT view().modalStateChanged(false);
    EXPECT_EQ(keys.take(), Told());
    QApplication::setActiveWindow(window);
    QApplication::setActiveWindow(nullptr);
    EXPECT_EQ(keys.take(), Told{"inactive"});
}

TEST_F(Window, ActivatesAHookWhenItIsClosedAndLetsTheHostGoOn)
{
    Debug::installHook("DebugServerWindowClosedHook", &hooks, true);
    window->show();
    EXPECT_TRUE(window->close());
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(hooks.takeCalls(), Told{"DebugServerWindowClosedHook="});
    EXPECT_FALSE(window->testAttribute(Qt::WA_QuitOnClose));
}

TEST_F(Window, SavesItsLinesToAFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("session.log"));
    window->appendOutput("first\n\nthird");
    robot->close();
    choose("Save to File...");
    robot->choose(folder.filePath(QStringLiteral("no/such.log")));
    choose("Save to File...");
    robot->choose(path);
    choose("Save to File...");
    EXPECT_EQ(readFile(path.toStdString()), "first\r\n\r\nthird");
    window->makeDefault();
    EXPECT_EQ(host.stored("DebugServerSavedLog"), path);
    choose("Copy to Clipboard...");
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("first\n\nthird"));
}

TEST_F(Window, TakesChosenFonts)
{
    const auto chooseSize = [](int size) {
        return [size](QDialog &dialog) {
            auto &fonts = dynamic_cast<QFontDialog &>(dialog);
            fonts.setCurrentFont(QFont(fonts.currentFont().family(), size));
            fonts.accept();
        };
    };
    robot->then(chooseSize(17));
    choose("Set Output Font...");
    robot->then(chooseSize(15));
    choose("Set User Interface Font...");
    EXPECT_EQ(view().font().pointSize(), 17);
    EXPECT_EQ(button("activate").font().pointSize(), 15);
}

TEST_F(Window, ShowsAnalysisTextsOfAllThreadsInTheirOrder)
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < 500; ++i)
                window->textOutput("file", i,
                                   (std::to_string(thread) + ' ' + std::to_string(i) + '\n').c_str());
        });
    }
    EXPECT_TRUE(runUntil([this] { return view().buffer().lineCount() == 2000; }));
    for (std::thread &thread : threads)
        thread.join();
    int next[4] = {};
    for (const std::string &line : linesOf(textOf(view().buffer()).toStdString())) {
        int &expected = next[line.at(0) - '0'];
        EXPECT_EQ(line.substr(2), std::to_string(expected++));
    }
    window->textOutput(nullptr, 0, nullptr);
}

TEST_F(Window, MayBeDeletedByWhomeverItCalls)
{
    const auto end = [this] { delete window; };
    KeyRecorder keys;
    hooks.onCall = [&](char *, char *) { end(); };
    Debug::installHook("first", &hooks, true);
    window->refreshHooks();
    QTest::keyClick(&parameters(), Qt::Key_Return);
    EXPECT_FALSE(window);
    EXPECT_TRUE(DebugWindow::isOutputIdle());

    open();
    inMenu([&](QMenu &) { end(); });
    EXPECT_FALSE(window);
    for (const char *const entry : {"Save to File...", "Set User Interface Font..."}) {
        open();
        robot->then([&](QDialog &) { end(); });
        choose(entry);
        EXPECT_FALSE(window);
    }
    open();
    host.onRead = [&](const QString &key) {
        if (key == QLatin1String("DebugAnalysisWindowGeometry"))
            end();
    };
    window->makeDefault();
    EXPECT_FALSE(window);
    EXPECT_EQ(host.written(), Told()); // what is the default of a library that has ended?

    open();
    keys.onCall = end;
    QTest::keyPress(window.data(), Qt::Key_F5);
    EXPECT_FALSE(window);
    open();
    window->close();
    EXPECT_FALSE(window);
}

TEST_F(Window, IsBuiltWhileTheHostPrintsAndEndsTheLibrary)
{
    host.onRead = [](const QString &) {
        Debug::println(2, 0, QStringLiteral("somebody reads"), 0);
        Debug::exitDebug();
    };
    open();
    host.onRead = nullptr;
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Signal Generator Debug Output"));
}

TEST_F(Window, WrapsItsControlsAndIsUsedByKeyboardAlone)
{
    Debug::installHook("first", &hooks, true);
    window->refreshHooks();
    window->resize(320, 400);
    window->show();
    EXPECT_EQ(window->focusWidget(), &view()); // a blank must not switch the output off
    QWidget *const order[] = {
        &button("Clear Log"),   &hookNames(),          &parameters(), &button("activate"),
        &button("Settings..."), &button("Analyze..."), &view()};
    button("Output Off").setFocus();
    QRect before = button("Output Off").geometry();
    for (QWidget *const next : order) {
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(window->focusWidget(), next);
        EXPECT_FALSE(next->accessibleName().isEmpty());
        const QRect place(next->mapTo(window, QPoint()), next->size());
        EXPECT_TRUE(window->rect().contains(place));
        EXPECT_TRUE(place.x() > before.x() || place.y() > before.bottom());
        before = place;
    }
}

} // namespace
