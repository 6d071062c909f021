// The windows that belong to the debug window: the settings dialog and the table of results.

#include "debugwindow/debugwindow.h"
#include "gui/boxtest.h"
#include "leakanalyzer/analysiscontrol.h"
#include "settingsdialog/settingsdialog.h"

#include <QCheckBox>
#include <QFontDialog>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTableView>

#include <thread>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;

class Companions : public BoxTest
{
protected:
    Companions() { showWindow(); }
    void showWindow()
    {
        Debug::showDebugWindow();
        EXPECT_TRUE(runUntil([] { return debugWindow() != nullptr; }));
        window = qobject_cast<DebugWindow *>(debugWindow());
    }
    void startAgain()
    {
        Debug::initDebug();
        showWindow();
    }
    void choose(const char *entry)
    {
        chooseInMenu([this] { window->configuration(); }, entry);
    }
    SettingsDialog *openSettings()
    {
        const QPointer<SettingsDialog> kept = window->findChild<SettingsDialog *>();
        if (kept == nullptr) // the robot knows it otherwise
            robot->leaveOpen();
        choose("Configure Messages...");
        EXPECT_TRUE(runUntil([this] { return robot->left() == 0; }));
        auto *const dialog = window->findChild<SettingsDialog *>();
        EXPECT_TRUE(dialog != nullptr && dialog->isVisible());
        return dialog;
    }
    static QTableView *results()
    {
        for (QWidget *const each : QApplication::topLevelWidgets()) {
            if (auto *const table = qobject_cast<QTableView *>(each))
                return table;
        }
        return nullptr;
    }
    void report(int rows)
    {
        window->summary(rows, 600, 0, 3 * rows, 1000, 3000);
        for (int row = 0; row < rows; ++row)
            window->tableRow(row, "Sweep::step", 0x4d2, 3, 2000, 600 / rows, 30);
        window->tableComplete();
    }
    QPointer<DebugWindow> window;
};

TEST_F(Companions, SettingsDialogIsKeptUntilTheFontChanges)
{
    const QPointer<SettingsDialog> dialog = openSettings();
    ASSERT_NE(dialog, nullptr);
    const std::pair<const QPushButton *, const char *> buttons[] = {
        {dialog->openButton(), "Loads a previously stored Debug Server output configuration"},
        {dialog->saveButton(), "Saves the current Debug Server output configuration for later use"},
        {dialog->closeButton(), "Closes this dialog"},
        {dialog->filterButton(), "Sets additional output filter for levels and message content"}};
    for (const auto &[button, toolTip] : buttons) {
        EXPECT_EQ(button->toolTip().toStdString(), toolTip);
        EXPECT_FALSE(button->icon().pixmap(16).isNull()) << toolTip;
    }
    dialog->closeButton()->click();
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(openSettings(), dialog);
    robot->then([](QDialog &fonts) {
        dynamic_cast<QFontDialog &>(fonts).setCurrentFont(QFont(QStringLiteral("DejaVu Sans"), 13));
        fonts.accept();
    });
    choose("Set User Interface Font...");
    EXPECT_TRUE(runUntil([&] { return dialog == nullptr; }));
    EXPECT_EQ(openSettings()->font().pointSize(), 13);
}

TEST_F(Companions, OpenSettingsDialogFollowsWhatOthersChange)
{
    const QPointer<SettingsDialog> dialog = openSettings();
    const auto *const modules = dialog->findChild<QListWidget *>(QStringLiteral("moduleList"));
    Debug::setModuleDescription(kernel, "Renamed", "Kernel");
    ASSERT_TRUE(Debug::isActive(kernel, 0, 0));
    EXPECT_TRUE(runUntil([&] { return !modules->findItems(QStringLiteral("Renamed"), {}).isEmpty(); }));
    Debug::setDisplayFlags(-7);
    EXPECT_EQ(openSettings(), dialog);
    EXPECT_TRUE(dialog->findChild<QCheckBox *>(QStringLiteral("threadCheck"))->isChecked());
    host.store("DebugServerFileSize", "?");
    dialog->makeDefault();
    EXPECT_NE(host.stored("DebugServerFileSize"), QStringLiteral("?"));
}

TEST_F(Companions, ReportsOfAnyThreadAreShownInOneTable)
{
    EXPECT_EQ(results(), nullptr);
    std::thread([this] { report(2); }).join();
    ASSERT_TRUE(runUntil([] { return results() != nullptr && results()->model()->rowCount() == 2; }));
    const QPointer<QTableView> table = results();
    EXPECT_TRUE(table->isVisible());
    report(3);
    EXPECT_TRUE(runUntil([&] { return table->model()->rowCount() == 3; }));
    EXPECT_EQ(results(), table);
    robot->then([](QDialog &fonts) {
        dynamic_cast<QFontDialog &>(fonts).setCurrentFont(QFont(QStringLiteral("DejaVu Sans"), 17));
        fonts.accept();
    });
    choose("Set Output Font...");
    EXPECT_EQ(table->font().pointSize(), 17);
    table->setGeometry(40, 60, 512, 222);
    window->makeDefault();
    EXPECT_EQ(host.stored("DebugAnalysisWindowGeometry"), QStringLiteral("40;60;512;222"));
}

TEST_F(Companions, LeaveTheScreenWithTheLibrary)
{
    const QPointer<SettingsDialog> dialog = openSettings();
    report(1);
    ASSERT_TRUE(runUntil([] { return results() != nullptr && results()->isVisible(); }));
    const QPointer<QTableView> table = results();
    Debug::exitDebug();
    EXPECT_TRUE(dialog == nullptr || !dialog->isVisible());
    EXPECT_TRUE(table == nullptr || !table->isVisible());
    EXPECT_TRUE(runUntil([&] { return dialog == nullptr && table == nullptr; }));
    Debug::initDebug();
}

TEST_F(Companions, SettingsDialogMayGoWhileOneOfItsDialogsIsOpen)
{
    for (QPushButton *(SettingsDialog::*const which)() const :
         {&SettingsDialog::openButton, &SettingsDialog::saveButton, &SettingsDialog::filterButton}) {
        QPushButton *const button = (openSettings()->*which)();
        robot->then([](QDialog &open) {
            Debug::exitDebug();
            open.reject();
        });
        button->click();
        EXPECT_TRUE(runUntil([this] { return window == nullptr; }));
        startAgain();
    }
}

TEST_F(Companions, MayGoWhileTheirMenusAndDialogsAreOpen)
{
    analysis::toolsEnabled(1);
    for (void (DebugWindow::*const open)() : {&DebugWindow::configuration, &DebugWindow::analyzing}) {
        inMenu([&] { (window->*open)(); },
               [](QMenu &menu) {
                   Debug::exitDebug();
                   menu.close();
               });
        EXPECT_TRUE(runUntil([this] { return window == nullptr; }));
        startAgain();
    }
}

} // namespace
