// What the message view can be told: its menu, its keys, the selection and the marker files behind it.

#include "debugwindow/markerfile.h"
#include "debugwindow/selection.h"
#include "debugwindow/viewcommands.h"
#include "support/guiapplication.h"
#include "support/programdata.h"

#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

/// Each entry with its number, its text, a tab, its key, and its check mark.
std::string entriesOf(const QMenu &menu)
{
    std::string entries;
    for (const QAction *const action : menu.actions()) {
        EXPECT_TRUE(action->shortcut().isEmpty()) << "might take the key from the view";
        if (action->isSeparator())
            entries += "-- ";
        else if (action->menu() != nullptr)
            entries += action->text().toStdString() + " {" + entriesOf(*action->menu()) + "} ";
        else
            entries += std::to_string(action->data().toInt()) + ' ' + action->text().toStdString()
                + (!action->isCheckable()    ? ", "
                       : action->isChecked() ? " on, "
                                             : " off, ");
    }
    return entries;
}

TEST(ViewMenu, NamesEachCommandItsKeyAndItsState)
{
    const TestApplication<QApplication> application;
    QMenu menu;
    fillViewMenu(menu, {false, false, true, false});
    EXPECT_EQ(
        entriesOf(menu),
        "1001 Clear, -- 1040 Select All\tCtrl+A, 1050 Clear Selection, 1010 Copy All\tCtrl+C, -- "
        "Search... {1100 Find...\tCtrl+F, 1110 Find Next\tCtrl+G, 1120 Find Previous\tCtrl+Shift+G, } "
        "Markers... {2000 Add Marker...\tCtrl+M, 2002 Remove Marker...\tCtrl+R, 2001 Clear Markers, -- "
        "2004 Load Markers...\tCtrl+Shift+O, 2003 Save Markers...\tCtrl+Shift+S, } "
        "1130 Goto Line...\tCtrl+L, -- Settings... {2100 Show Line Numbers\tAlt+L off, "
        "2101 Auto Scroll\tAlt+S on, 2102 Marked Output Only\tAlt+M off, 2103 Mark Extra Lines\tAlt+E, } ");
    QMenu other;
    fillViewMenu(other, {true, true, false, true});
    const std::string entries = entriesOf(other);
    for (const char *const entry : {"1010 Copy Selection\tCtrl+C", "L on", "S off", "M on"})
        EXPECT_NE(entries.find(entry), std::string::npos) << entry;
}

TEST(ViewKeys, StandForCommands)
{
    const auto commandOf = [](const char *keys) {
        const int combination = QKeySequence(QLatin1String(keys))[0];
        const QKeyEvent event(QEvent::KeyPress, combination & ~Qt::KeyboardModifierMask,
                              Qt::KeyboardModifiers(combination & Qt::KeyboardModifierMask));
        return static_cast<int>(commandOfKey(event).value_or(ViewCommand{}));
    };
    const std::pair<const char *, int> keys[] = {
        {"Ctrl+A", 1040}, {"Ctrl+C", 1010}, {"Ctrl+F", 1100},       {"Ctrl+G", 1110},
        {"Ctrl+L", 1130}, {"Ctrl+M", 2000}, {"Ctrl+Shift+G", 1120}, {"Ctrl+O", 2000},
        {"Ctrl+R", 2002}, {"Alt+E", 2103},  {"Ctrl+Shift+O", 2004}, {"Ctrl+Shift+S", 2003},
        {"Alt+L", 2100},  {"Alt+M", 2102},  {"Ctrl+Shift+C", 1010}, {"Alt+S", 2101},
        {"Ctrl+S", 0},    {"A", 0},         {"Shift+S", 0},         {"Ctrl+Alt+S", 0},
        {"Alt+A", 0},     {"Ctrl+E", 0},    {"Ctrl+Shift+B", 0},    {"Ctrl+Home", 0}};
    for (const auto &[combination, command] : keys)
        EXPECT_EQ(commandOf(combination), command) << combination;
}

TEST(ViewSelection, HasItsColumnsInEitherDirectionInWhateverRowsThereAre)
{
    Selection selection;
    const auto columns = [&selection](std::int64_t row) {
        const auto range = selection.columnsOf(row, 10);
        return range ? std::to_string(range->begin) + "-" + std::to_string(range->end) : "";
    };
    EXPECT_EQ(columns(-1) + columns(0), "");
    selection.extendTo({5, 3});
    EXPECT_EQ(columns(5), "3-3") << "begins where it is first moved to";
    selection.extendTo({3, 50});
    EXPECT_EQ(columns(2) + columns(3) + ' ' + columns(4) + ' ' + columns(5), "10-10 0-10 0-3");
    selection.selectAll(7);
    EXPECT_TRUE(selection.first() == (TextPosition{0, 0}) && selection.last() == (TextPosition{6, 1024}));
}

class MarkerFile : public ::testing::Test
{
protected:
    QString load(const std::string &content)
    {
        writeFile(path.toStdString(), content);
        return markerfile::load(path);
    }
    const QString path = QString::fromStdString(libraryFile("some.dbgfilt"));
};

TEST_F(MarkerFile, GivesItsFirstLineWhateverIsInIt)
{
    EXPECT_EQ(load("a|b\nc\n"), QStringLiteral("a|b\n"));
    EXPECT_EQ(load("a\r\n"), QStringLiteral("a\r\n"));
    EXPECT_EQ(load(""), QString());
    EXPECT_EQ(load(std::string("\0\xFF\x01", 3)), QString::fromLatin1("\0\xFF\x01", 3));
    EXPECT_EQ(load(std::string(3000000, 'x')), QString(4094, QLatin1Char('x')));
    for (const QString &nothing :
         {QString(), path + QStringLiteral(".none"), QStringLiteral("/"), QStringLiteral("/dev/zero")})
        EXPECT_EQ(markerfile::load(nothing), QString());
}

TEST_F(MarkerFile, IsWrittenAsOneLineOfLatin1)
{
    EXPECT_EQ(markerfile::withSuffix(QStringLiteral("a.DBGFILT")), QStringLiteral("a.DBGFILT.dbgfilt"));
    EXPECT_EQ(markerfile::withSuffix(path), path);
    EXPECT_EQ(markerfile::withSuffix(QString()), QString()) << "cancelled";
    markerfile::save(path, QString::fromUtf8("\xC3\xA9|\xE2\x82\xAC"));
    EXPECT_EQ(readFile(path.toStdString()), "\xE9|?\n");
    const QString pipe = QString::fromStdString(libraryFile("pipe.dbgfilt"));
    ASSERT_EQ(mkfifo(pipe.toUtf8().constData(), 0600), 0) << "nobody reads it";
    for (const QString &nowhere : {QString(), QStringLiteral("/"), path + QStringLiteral("/below"), pipe})
        markerfile::save(nowhere, QStringLiteral("x"));
    EXPECT_EQ(readFile(path.toStdString()), "\xE9|?\n");
}

} // namespace
