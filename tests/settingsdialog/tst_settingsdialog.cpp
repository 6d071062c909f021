// The settings dialog: what it shows, what its controls and menus do, and what ends it in the middle of that.

#include "public/hookrecorder.h"
#include "settingsdialog/dialogmenu.h"
#include "settingsdialog/settingsdialog.h"
#include "support/guiapplication.h"
#include "support/maphost.h"

#include <QCheckBox>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QFileDialog>
#include <QGroupBox>
#include <QInputDialog>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;
using Calls = std::vector<std::string>;

constexpr const char *hookKeys[] = {"DebugServerEnabledClassesChangedHook",
                                    "DebugServerEnabledLevelChangedHook", "DebugServerSettingsChangedHook",
                                    "DebugServerFilterChangedHook"};

/// "text=code" of each entry; '+' before a checked one, '-' before one that could be; '|' for a separator.
std::string entriesOf(const QMenu &menu)
{
    std::string entries;
    for (const QAction *const action : menu.actions()) {
        if (action->isCheckable())
            entries += action->isChecked() ? '+' : '-';
        if (action->isSeparator())
            entries += "| ";
        else if (action->menu() != nullptr)
            entries += action->text().toStdString() + "{ " + entriesOf(*action->menu()) + "} ";
        else
            entries += action->text().toStdString() + '=' + action->data().toString().toStdString() + ' ';
    }
    return entries;
}

class Settings : public ::testing::Test
{
protected:
    Settings()
    {
        host.store("noWindowOutput", 1); // no window for the library's own lines
        Debug::initDebug();
        for (const char *const key : hookKeys)
            Debug::installHook(key, &hooks, true); // before the application's, which are not direct
        application.emplace();
        robot.emplace();
        Debug::initDebug();
        QCoreApplication::processEvents();
        alpha = newModule("Alpha", {"<Init>, ", "<   Error>, ", " "}, {"<critical>: ", "<   info>: "});
        bare = newModule("Bare", {}, {});
        open();
    }
    ~Settings() override
    {
        EXPECT_EQ(robot->left(), 0U) << "fewer dialogs than expected";
        delete dialog;
        Debug::exitDebug();
        Debug::exitDebug();
    }
    static moduleId newModule(const char *name, std::vector<const char *> classes,
                              std::vector<const char *> levels)
    {
        const moduleId id = Debug::createModule(name, name);
        if (!classes.empty())
            Debug::setMessageClassDescriptions(id, static_cast<int>(classes.size()), classes.data());
        if (!levels.empty())
            Debug::setMessageLevelDescriptions(id, static_cast<int>(levels.size()), levels.data());
        static_cast<void>(Debug::isActive(id, 0, 0)); // modules that nobody asked about are not in use
        return id;
    }
    void open()
    {
        delete dialog;
        dialog = new SettingsDialog(nullptr);
        robot->leaveOpen();
        dialog->show();
        dialog->activateWindow();
        ASSERT_TRUE(runUntil([this] { return robot->left() == 0 && dialog->isActiveWindow(); }));
    }
    template <typename Part>
    Part &part(const char *name)
    {
        return *dialog->findChild<Part *>(QLatin1String(name));
    }
    QListWidget &modules() { return part<QListWidget>("moduleList"); }
    QListWidget &classes() { return part<QListWidget>("classesList"); }
    QComboBox &levels() { return part<QComboBox>("messageLevel"); }

    void select(const char *module)
    {
        QListWidgetItem *const item = modules().findItems(QLatin1String(module), Qt::MatchExactly).value(0);
        ASSERT_NE(item, nullptr) << module;
        QTest::mouseClick(modules().viewport(), Qt::LeftButton, {}, modules().visualItemRect(item).center());
    }
    /// "+Init -Error": the classes and whether they are checked.
    std::string shownClasses()
    {
        std::string shown;
        for (int row = 0; row < classes().count(); ++row) {
            const QListWidgetItem &item = *classes().item(row);
            shown += item.checkState() == Qt::Checked ? " +" : " -";
            shown += item.text().toStdString();
        }
        return shown;
    }
    std::string shownLevels()
    {
        std::string shown = std::to_string(levels().currentIndex()) + " of";
        for (int i = 0; i < levels().count(); ++i)
            shown += ' ' + levels().itemText(i).toStdString();
        return shown;
    }
    void toggleClass(int row)
    {
        classes().setCurrentRow(row);
        QTest::keyClick(&classes(), Qt::Key_Space);
        QCoreApplication::processEvents();
    }
    void chooseLevel(Qt::Key key)
    {
        QTest::keyClick(&levels(), key);
        QCoreApplication::processEvents();
    }
    /// Opens the context menu of \a widget and chooses the entry \a code; returns what the menu offers.
    static std::string inMenuOf(QWidget &widget, int code)
    {
        std::string entries;
        const QPoint inside(5, 5);
        QContextMenuEvent event(QContextMenuEvent::Mouse, inside, widget.mapToGlobal(inside));
        inMenu([&] { QApplication::sendEvent(&widget, &event); },
               [&](QMenu &menu) {
                   entries = entriesOf(menu);
                   for (QAction *const action : menu.actions()) {
                       if (action->data().toInt() == code && code != 0)
                           menu.setActiveAction(action);
                   }
                   QTest::keyClick(&menu, code == 0 ? Qt::Key_Escape : Qt::Key_Return);
               });
        return entries;
    }
    void run(DialogCommand command) { dialog->command(static_cast<int>(command)); }
    [[nodiscard]] std::string call(const char *key, moduleId module) const
    {
        return key + ('=' + std::to_string(module));
    }

    MapHost host;
    HookRecorder hooks;
    std::optional<TestApplication<QApplication>> application;
    std::optional<Robot> robot;
    QPointer<SettingsDialog> dialog;
    moduleId alpha = -1;
    moduleId bare = -1;
};

TEST_F(Settings, ShowsTheModulesInUseWithTheirClassesAndLevels)
{
    Debug::createModule("Unasked", "Unasked");
    Debug::disableMessageClassType(alpha, 1);
    Debug::setClippingLevel(alpha, 1);
    open();
    EXPECT_TRUE(modules().findItems(QStringLiteral("Unasked"), Qt::MatchContains).isEmpty());
    EXPECT_EQ(modules().currentRow(), 0);
    select("Alpha");
    EXPECT_EQ(shownClasses(), " +Init -Error +(class 2)");
    EXPECT_EQ(shownLevels(), "2 of release critical info");
    Debug::setClippingLevel(alpha, -7);
    dialog->refresh();
    EXPECT_EQ(shownLevels(), "0 of release critical info");
    modules().setFocus();
    QTest::keyClick(&modules(), Qt::Key_Down);
    EXPECT_EQ(modules().currentItem()->text(), QStringLiteral("Bare"));
    EXPECT_EQ(shownClasses(), "");
    EXPECT_EQ(shownLevels(), "-1 of release") << "its clipping level 0 has no entry";
    EXPECT_EQ(hooks.takeCalls(), Calls());
}

TEST_F(Settings, SwitchesClassesAndLevelsOfTheSelectedModule)
{
    select("Alpha");
    toggleClass(1);
    EXPECT_EQ(Debug::getEnabledMessageClasses(alpha), QStringLiteral("Init,"));
    toggleClass(1);
    EXPECT_EQ(Debug::getEnabledMessageClasses(alpha), QStringLiteral("all"));
    EXPECT_EQ(hooks.takeCalls(), Calls(2, call(hookKeys[0], alpha)));
    EXPECT_EQ(inMenuOf(*classes().viewport(), 2), "enable all...=1 disable all...=2 ");
    EXPECT_EQ(Debug::getEnabledMessageClasses(alpha), QStringLiteral("none"));
    EXPECT_EQ(shownClasses(), " -Init -Error -(class 2)");
    Debug::enableMessageClassType(alpha, -1);
    Debug::disableMessageClassType(alpha, 1); // neither is shown yet
    inMenuOf(*classes().viewport(), 1);
    EXPECT_EQ(Debug::getEnabledMessageClasses(alpha), QStringLiteral("all"));
    EXPECT_EQ(hooks.takeCalls(), Calls(2, call(hookKeys[0], alpha)));
    inMenuOf(*classes().viewport(), 0);
    EXPECT_EQ(hooks.takeCalls(), Calls());

    Debug::setClippingLevel(alpha, 0);
    dialog->refresh();
    chooseLevel(Qt::Key_Down);
    EXPECT_EQ(Debug::getClippingLevel(alpha), 1);
    chooseLevel(Qt::Key_Home);
    EXPECT_EQ(Debug::getClippingLevel(alpha), -1);
    EXPECT_EQ(hooks.takeCalls(), Calls(2, call(hookKeys[1], alpha)));
}

TEST_F(Settings, EachCheckBoxSwitchesItsFlag)
{
    select("Bare");
    const std::pair<const char *, int> checks[] = {
        {"fileOutputCheck", 1}, {"moduleCheck", 2},   {"assertionCheck", 16}, {"clearCheck", 32},
        {"timeCheck", 256},     {"threadCheck", 512}, {"consoleCheck", 1024},
    };
    for (const auto &[name, flag] : checks) {
        auto &check = part<QCheckBox>(name);
        for (int round = 0; round < 4; ++round) {
            const int expected = Debug::getDisplayFlags() ^ flag;
            if (round < 2)
                QTest::mouseClick(&check, Qt::LeftButton, {}, QPoint(8, check.height() / 2));
            else
                check.toggle(); // as screen readers do
            QCoreApplication::processEvents();
            EXPECT_EQ(Debug::getDisplayFlags(), expected) << name;
            EXPECT_EQ(check.isChecked(), (expected & flag) != 0) << name;
            EXPECT_EQ(hooks.takeCalls(), Calls{call(hookKeys[2], bare)}) << name;
        }
    }
    QTest::keyClick(dialog, Qt::Key_H, Qt::AltModifier);
    EXPECT_TRUE(runUntil([] { return (Debug::getDisplayFlags() & 512) != 0; })) << "by its key";
}

TEST_F(Settings, FollowsChangesFromOutsideWithoutDisturbing)
{
    select("Alpha");
    classes().setCurrentRow(1);
    const QListWidgetItem *const row = classes().item(1);
    const QListWidgetItem *const module = modules().currentItem();
    Debug::setDisplayFlags(-7);
    Debug::disableMessageClassType(alpha, 1);
    Debug::setClippingLevel(alpha, 0);
    dialog->hide();
    dialog->show();
    EXPECT_TRUE(part<QCheckBox>("threadCheck").isChecked()) << "shown again";
    EXPECT_EQ(shownClasses(), " +Init -Error +(class 2)");
    EXPECT_EQ(shownLevels(), "1 of release critical info");
    EXPECT_EQ(classes().currentRow(), 1);
    EXPECT_TRUE(classes().item(1) == row && modules().currentItem() == module) << "rebuilt";

    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(runUntil([&] { return other.isActiveWindow(); }));
    newModule("Late", {}, {});
    const char *more[] = {"<Init>, ", "<Stop>, "};
    Debug::setMessageClassDescriptions(alpha, 2, more);
    dialog->activateWindow();
    ASSERT_TRUE(runUntil([this] { return shownClasses() == " +Init +Stop"; })) << shownClasses();
    EXPECT_EQ(modules().item(modules().count() - 1)->text(), QStringLiteral("Late"));
    EXPECT_EQ(modules().currentItem()->text(), QStringLiteral("Alpha"));
    Debug::createModule("DebugServerClient", ""); // a new table
    dialog->refresh();
    EXPECT_EQ(modules().currentRow(), modules().count() > 0 ? 0 : -1) << "the module has gone";
    EXPECT_EQ(hooks.takeCalls(), Calls());
    QCoreApplication::processEvents();
}

TEST_F(Settings, OffersInItsMenuWhatFits)
{
    DialogMenuState state;
    const auto entries = [&state] {
        QMenu menu;
        fillDialogMenu(menu, state);
        return entriesOf(menu);
    };
    const std::string file = "output file...=8192 output file size...=8193 | ";
    const std::string nextStart = "| -without window=4098 -release assertions=4099 ";
    EXPECT_EQ(entries(),
              "make default=4096 | " + file + "small display...=4097 -set output filter...=4112 "
                  + nextStart);
    state.isSmallDisplay = true;
    state.displayFlags = 1024 | 32;
    const std::string more = "more options...{ -set output filter...=4112 | +output to console=12288 "
                             "-show thread=12289 +enable Debug::clear()=12290 } ";
    EXPECT_EQ(entries(), "make default=4096 | " + file + "normal display...=4097 " + more + nextStart);
    state.isClient = true;
    EXPECT_EQ(entries(), "make default=4096 | " + more);

    const auto offered = [this] { return inMenuOf(*dialog, 0); };
    EXPECT_EQ(inMenuOf(levels(), 0), offered());
    EXPECT_NE(offered().find("+without window"), std::string::npos);
    Debug::setLevelFilter(QStringLiteral("|info"));
    EXPECT_NE(offered().find("+set output filter"), std::string::npos) << "of levels alone";
    Debug::setLevelFilter(QString());
    Debug::setOutputFilter(QStringLiteral("x"));
    EXPECT_NE(offered().find("+set output filter"), std::string::npos) << "of text alone";
    auto &check = part<QCheckBox>("fileOutputCheck");
    EXPECT_EQ(inMenuOf(check, 0), "select file...=8192 | set file size...=8193 | ");
    Debug::setClientMode();
    dialog->fileContextMenuRequested(QPoint()); // would wait for an answer
    EXPECT_EQ(offered(), "make default=4096 | +set output filter...=4112 ");
}

TEST_F(Settings, SwitchesBetweenLongAndShortTexts)
{
    const QSize normal = dialog->size();
    inMenuOf(*dialog, static_cast<int>(DialogCommand::SwitchDisplay));
    EXPECT_EQ(part<QGroupBox>("globalGroupBox").title(), QStringLiteral("Global"));
    auto &check = part<QCheckBox>("clearCheck");
    EXPECT_EQ(check.text(), QStringLiteral("clear"));
    EXPECT_EQ(check.shortcut(), QKeySequence(QStringLiteral("Alt+E")));
    EXPECT_LT(dialog->width(), normal.width());
    dialog->close();
    dialog->show();
    EXPECT_NE(inMenuOf(*dialog, 4097).find("normal display"), std::string::npos);
    EXPECT_EQ(check.text(), QStringLiteral("enable Debug::clear()"));
    EXPECT_EQ(dialog->size(), normal);
}

TEST_F(Settings, CommandsOfTheMenuTakeEffect)
{
    select("Alpha");
    const int flags = Debug::getDisplayFlags();
    const std::pair<DialogCommand, int> toggles[] = {
        {DialogCommand::ConsoleOutput, 1024},
        {DialogCommand::ShowThread, 512},
        {DialogCommand::AllowClear, 32},
    };
    for (const auto &[command, flag] : toggles) {
        run(command);
        EXPECT_EQ(Debug::getDisplayFlags(), flags ^ flag);
        run(command);
        EXPECT_EQ(Debug::getDisplayFlags(), flags);
    }
    EXPECT_EQ(hooks.takeCalls(), Calls(6, call(hookKeys[2], alpha)));

    host.store("noWindowOutput", 0);
    for (const char *const expected : {"1", "0"}) {
        robot->click("OK");
        run(DialogCommand::WithoutWindow);
        EXPECT_EQ(host.stored("noWindowOutput"), QLatin1String(expected));
    }
    setLowlevelIntegerProperty(2, -1);
    for (const int expected : {1, 0, 1}) {
        run(DialogCommand::ReleaseAssertions);
        EXPECT_EQ(getLowlevelIntegerProperty(2, 7), expected);
    }
    int asked = 0;
    QObject::connect(dialog, &SettingsDialog::makeDefaultRequested, [&asked] { ++asked; });
    run(DialogCommand::MakeDefault);
    dialog->command(0);
    EXPECT_EQ(asked, 1);
    EXPECT_EQ(hooks.takeCalls(), Calls());
}

TEST_F(Settings, AsksForTheOutputFileAndItsSize)
{
    const QTemporaryDir folder;
    const std::string present = folder.filePath(QStringLiteral("now.log")).toStdString();
    Debug::setOutputFileName(present.c_str());
    robot->then([&](QDialog &opened) {
        EXPECT_EQ(static_cast<QFileDialog &>(opened).directory().path(), folder.path());
        EXPECT_EQ(opened.windowTitle(), QStringLiteral("Please select Log File"));
        opened.reject();
    });
    run(DialogCommand::OutputFile);
    robot->choose(folder.filePath(QString::fromUtf8("\u0444.log"))); // not in Latin-1
    robot->click("OK");
    run(DialogCommand::OutputFile);
    EXPECT_EQ(Debug::getOutputFileName(), present);
    const QString chosen = folder.filePath(QString::fromUtf8("m\u00e4rz.log"));
    robot->choose(chosen);
    run(DialogCommand::OutputFile);
    EXPECT_EQ(QString::fromLatin1(Debug::getOutputFileName()), chosen);

    const auto answerSize = [this](int shown, int entered) {
        robot->then([=](QDialog &opened) {
            auto &input = static_cast<QInputDialog &>(opened);
            EXPECT_EQ(input.intValue(), shown);
            EXPECT_EQ(input.intMaximum(), 2047);
            input.setIntValue(entered);
            entered == 0 ? input.reject() : input.accept();
        });
        run(DialogCommand::OutputFileSize);
    };
    Debug::setMaxOutputFileSize(-1);
    answerSize(0, 5000);
    EXPECT_EQ(Debug::getMaxOutputFileSize(), 2047 * qint64(1048576));
    Debug::setMaxOutputFileSize(qint64(1) << 60);
    answerSize(2047, 0);
    EXPECT_EQ(Debug::getMaxOutputFileSize(), qint64(1) << 60);
    EXPECT_EQ(hooks.takeCalls(), Calls());
}

TEST_F(Settings, SavesAndLoadsTheConfiguration)
{
    const QTemporaryDir folder;
    select("Alpha");
    toggleClass(1);
    Debug::setClippingLevel(alpha, 1);
    robot->choose(folder.filePath(QStringLiteral("bench.2")));
    dialog->saveButton()->click();
    toggleClass(0);
    toggleClass(1);
    hooks.takeCalls();
    robot->choose(folder.filePath(QStringLiteral("bench.2"))); // another one than the file dialog looks for
    robot->click("No");
    dialog->saveButton()->click();
    robot->choose(folder.filePath(QStringLiteral("bench.2.dbgcfg")));
    std::string shownToHandler;
    hooks.onCall = [&](char *, char *) { shownToHandler = shownClasses(); };
    dialog->openButton()->click();
    hooks.onCall = nullptr;
    EXPECT_EQ(shownToHandler, " +Init -Error -(class 2)");
    EXPECT_EQ(shownLevels(), "2 of release critical info");
    EXPECT_EQ(hooks.takeCalls(), Calls{call(hookKeys[0], alpha)});
    robot->close();
    dialog->openButton()->click();
    EXPECT_EQ(hooks.takeCalls(), Calls());
}

TEST_F(Settings, AnnouncesAChangeThatOutlivesTheDialogButNotTheLibrary)
{
    for (const bool libraryEnds : {false, true}) {
        open();
        select("Alpha");
        QTest::keyClick(&levels(), levels().currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Home);
        delete dialog;
        if (libraryEnds) {
            Debug::exitDebug(), Debug::exitDebug(), Debug::initDebug();
            Debug::installHook(hookKeys[1], &hooks, true);
        }
        QCoreApplication::processEvents();
        EXPECT_EQ(hooks.takeCalls(), libraryEnds ? Calls() : Calls{call(hookKeys[1], alpha)});
    }
}

TEST_F(Settings, AnnouncesAnAcceptedFilter)
{
    robot->click("Cancel");
    dialog->filterButton()->click();
    EXPECT_EQ(hooks.takeCalls(), Calls());
    robot->click("Ok");
    run(DialogCommand::OutputFilter);
    EXPECT_EQ(hooks.takeCalls(), Calls{call(hookKeys[3], 0)});
}

TEST_F(Settings, GoesOnEscapeAndCloseWithoutEndingTheHost)
{
    EXPECT_FALSE(dialog->testAttribute(Qt::WA_QuitOnClose));
    QTest::keyClick(&classes(), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
    dialog->show();
    dialog->closeButton()->click();
    EXPECT_FALSE(dialog->isVisible());
    for (const QPushButton *const button :
         {dialog->filterButton(), dialog->openButton(), dialog->saveButton(), dialog->closeButton()})
        EXPECT_FALSE(button->accessibleName().isEmpty()) << "it has no text";
}

TEST_F(Settings, MayEndWithEachOfItsHooks)
{
    hooks.onCall = [this](char *, char *) { delete dialog; };
    const std::function<void()> acts[] = {
        [this] { toggleClass(0); },
        [this] { chooseLevel(levels().currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up); },
        [this] { QTest::mouseClick(&part<QCheckBox>("timeCheck"), Qt::LeftButton, {}, QPoint(8, 8)); },
        [this] { inMenuOf(*classes().viewport(), 2); },
        [this] { run(DialogCommand::ShowThread); },
        [this] {
            robot->click("Ok");
            run(DialogCommand::OutputFilter);
        },
        [this] {
            QObject::connect(dialog, &SettingsDialog::makeDefaultRequested, [this] { delete dialog; });
            run(DialogCommand::MakeDefault);
        },
    };
    int act = 0;
    for (const auto &each : acts) {
        open();
        select("Alpha");
        each();
        EXPECT_TRUE(dialog.isNull()) << "act " << act;
        ++act;
    }
    open();
    robot->then([this](QDialog &) { delete dialog; });
    run(DialogCommand::OutputFileSize);
    EXPECT_TRUE(dialog.isNull());

    hooks.onCall = [](char *, char *) {
        Debug::exitDebug();
        Debug::exitDebug();
    };
    open();
    select("Alpha");
    toggleClass(0);
    EXPECT_EQ(modules().count() + classes().count() + levels().count(), 0);
    EXPECT_FALSE(levels().isEnabled());
    toggleClass(0);
    run(DialogCommand::AllowClear);
    EXPECT_FALSE(dialog.isNull());
}

} // namespace
