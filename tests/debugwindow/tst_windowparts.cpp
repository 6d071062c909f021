// The pieces of the debug window that work without one.

#include "debugwindow/parameterhistory.h"
#include "debugwindow/savedlog.h"
#include "debugwindow/settingsmenu.h"
#include "debugwindow/simpleflow.h"
#include "debugwindow/windowfonts.h"
#include "debugwindow/windowgeometry.h"
#include "support/guiapplication.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <QComboBox>
#include <QMenu>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;
using windowgeometry::Desktop;

constexpr QRect area{0, 0, 1000, 800};
constexpr QRect strip{8, 592, 984, 200};

QRect placed(const char *stored, int displays = 1)
{
    return windowgeometry::placed(QString::fromLatin1(stored), {area, displays});
}

TEST(Geometry, OfJunkIsTheStripAtTheBottom)
{
    for (const char *const junk :
         {"", ";", ";;;", "1;2;3", "1;2;3;4;5", "a;b;c;d", "1;2;3;x", "1,2,3,4", "0x1;2;3;4", "1.5;2;3;4",
          "1;2;0;4", "1;2;3;0", "1;2;-3;4", "1;2;40000;4", "40000;2;3;4", "1;-40000;3;4", "1;2;30000;30000",
          "1;2;3;99999999999999999999", "2147483647;2147483647;2147483647;2147483647"})
        EXPECT_EQ(placed(junk, 2), strip) << junk;
    EXPECT_EQ(windowgeometry::defaultStrip({QRect(100, 50, 1000, 800), 2}), QRect(108, 642, 984, 200));
    EXPECT_FALSE(windowgeometry::defaultStrip({QRect(), 1}).isEmpty());
}

TEST(Geometry, IsKeptWhereverTheWindowCanBeSeen)
{
    const QRect client(-20, 30, 400, 300);
    EXPECT_EQ(windowgeometry::formatted(client), QStringLiteral("-20;30;400;300"));
    EXPECT_EQ(windowgeometry::parsed(windowgeometry::formatted(client)), client);
    EXPECT_EQ(placed("-20;30;400;300"), client);
    EXPECT_EQ(windowgeometry::framePosition(client), QPoint(-28, 0));
}

TEST(Geometry, ComesBackFromADisplayThatIsGone)
{
    EXPECT_EQ(placed("1500;30;400;300", 2), QRect(1500, 30, 400, 300));
    EXPECT_EQ(placed("1500;30;400;300"), QRect(8, 30, 984, 300));
    EXPECT_EQ(placed("20;900;400;300"), QRect(20, 592, 400, 200));
    EXPECT_EQ(placed("-500;-400;400;300"), strip);
}

TEST(Fonts, AreStoredAndComeBack)
{
    MapHost host;
    const TestApplication<QApplication> application;
    WindowFonts fonts;
    fonts.output = QFont(QStringLiteral("Fixed"), 13, QFont::Bold);
    fonts.userInterface.setFamily(QStringLiteral("Sans"));
    fonts.userInterface.setPixelSize(20); // has no size in points of its own
    Settings settings;
    addFontSettings(settings, fonts);
    for (const auto &[key, value] : settings)
        host.writeStringSetting("DebugServer", QString::fromLatin1(key), value);
    EXPECT_EQ(host.stored("DebugServerDebugFontWeight"), QStringLiteral("75")); // whichever Qt it is
    const WindowFonts read = readWindowFonts();
    EXPECT_EQ(read.output.family(), QStringLiteral("Fixed"));
    EXPECT_EQ(read.output.pointSize(), 13);
    EXPECT_EQ(read.output.weight(), static_cast<int>(QFont::Bold));
    EXPECT_EQ(read.userInterface.family(), QStringLiteral("Sans"));
    EXPECT_GT(read.userInterface.pointSize(), 8);
    addFontSettings(settings, {QFont(QStringLiteral("Sans"), 300), {}});
    EXPECT_EQ(settings.at(7).second, QStringLiteral("200")) << "the largest that comes back";
}

TEST(Fonts, OfSizesAndWeightsThatMakeNoSenseAreTheDefault)
{
    MapHost host;
    const TestApplication<QApplication> application;
    for (const char *const size : {"0", "-3", "100000", "large"}) {
        host.store("DebugServerDebugFontSize", size);
        host.store("DebugServerDebugFontWeight", size[0] == '0' ? "100" : "-1");
        const QFont font = readWindowFonts().output;
        EXPECT_EQ(font.pointSize(), 8) << size;
        EXPECT_EQ(font.weight(), static_cast<int>(QFont::Normal)) << size;
        EXPECT_EQ(font.family(), QStringLiteral("Courier"));
    }
}

/// Widgets of the given sizes in a row, laid out for a width.
struct Row
{
    Row(std::initializer_list<QSize> sizes, int width)
    {
        for (const QSize size : sizes) {
            auto *const widget = new QWidget(&parent);
            widget->setFixedSize(size);
            layout->addWidget(widget);
        }
        parent.setGeometry(0, 0, width, layout->heightForWidth(width));
        layout->setGeometry(parent.rect());
    }
    [[nodiscard]] QRect at(int index) const { return layout->itemAt(index)->geometry(); }

    QWidget parent;
    SimpleFlow *const layout = new SimpleFlow(&parent);
};

TEST(Flow, WrapsWhatDoesNotFitAndCentresItInItsRow)
{
    const TestApplication<QApplication> application;
    const Row row({{50, 10}, {30, 20}, {40, 30}}, 4 + 50 + 4 + 30 + 4);
    EXPECT_EQ(row.at(0), QRect(4, 9, 50, 10));
    EXPECT_EQ(row.at(1), QRect(58, 4, 30, 20)); // fits exactly
    EXPECT_EQ(row.at(2), QRect(4, 28, 40, 30));
    EXPECT_EQ(row.parent.height(), 62);
    EXPECT_EQ(row.layout->minimumSize(), QSize(58, 38));
    EXPECT_EQ(row.layout->sizeHint(), QSize(4 + 50 + 4 + 30 + 4 + 40 + 4, 38));
}

TEST(Flow, SurvivesTinyWidthsHiddenAndRemovedItems)
{
    const TestApplication<QApplication> application;
    Row row({{50, 10}, {30, 20}, {40, 30}}, 1);
    EXPECT_EQ(row.at(2).y(), 4 + 10 + 4 + 20 + 4);
    row.layout->itemAt(1)->widget()->hide();
    EXPECT_EQ(row.layout->heightForWidth(1), 4 + 10 + 4 + 30 + 4);
    delete row.layout->itemAt(0)->widget();
    EXPECT_EQ(row.layout->count(), 2);
    EXPECT_EQ(row.layout->takeAt(7), nullptr);
}

/// "-" for a separator, "(text)" for a disabled entry, "[x] text" and "[ ] text" for one with a state.
QStringList entriesOf(const QMenu &menu)
{
    QStringList entries;
    for (const QAction *const action : menu.actions()) {
        QString entry = QStringLiteral("%1 %2").arg(action->data().toInt()).arg(action->text());
        if (action->isCheckable())
            entry.prepend(action->isChecked() ? QLatin1String("[x] ") : QLatin1String("[ ] "));
        entries += action->isSeparator()
            ? QStringLiteral("-")
            : (action->isEnabled() ? entry : QLatin1Char('(') + entry + QLatin1Char(')'));
    }
    return entries;
}

TEST(SettingsMenu, OffersClientConnectionsOnlyOnDemand)
{
    const TestApplication<QApplication> application;
    const auto filled = [](ClientEntry clients) {
        QMenu menu;
        fillSettingsMenu(menu, clients);
        return entriesOf(menu);
    };
    const QStringList without = QStringLiteral("4096 Configure Messages...|-|4176 Copy to Clipboard...|"
                                               "4192 Save to File...|-|4128 Set Output Font...|"
                                               "4144 Set User Interface Font...|4160 Make Default")
                                    .split(QLatin1Char('|'));
    EXPECT_EQ(filled(ClientEntry::Absent), without);
    QStringList with = without;
    with.insert(1, QStringLiteral("-"));
    with.insert(2, QStringLiteral("[ ] 4352 Allow Client Connections"));
    EXPECT_EQ(filled(ClientEntry::Unchecked), with);
    with[2] = QStringLiteral("[x] 4352 Allow Client Connections");
    EXPECT_EQ(filled(ClientEntry::Checked), with);
}

TEST(ParameterHistory, HasTheLatestOnTopAndEachOnce)
{
    const TestApplication<QApplication> application;
    QComboBox field;
    field.setEditable(true);
    ParameterHistory history(field);
    for (int i = 0; i < 60; ++i)
        history.add(QString::number(i));
    field.setEditText(QStringLiteral("typing"));
    history.add(QStringLiteral("20"));
    history.add(QString());
    EXPECT_EQ(field.count(), 50);
    EXPECT_EQ(field.itemText(0) + field.itemText(1) + field.itemText(49), QStringLiteral("205910"));
    EXPECT_EQ(field.findText(QStringLiteral("20"), Qt::MatchExactly), 0);
    EXPECT_EQ(field.currentText(), QStringLiteral("typing"));
}

TEST(SavedLog, HasLineEndsOfTextFilesAlsoBetweenPieces)
{
    const TestApplication<QCoreApplication> application;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("saved.log"));
    const int size = 64 * 1024;
    const QString text = QString(size - 1, QLatin1Char('x')) + QStringLiteral("\n\ny\n");
    writeFile(path.toStdString(), std::string(size_t(2) * size, 'o'));
    EXPECT_TRUE(savedlog::write(path, text));
    EXPECT_EQ(readFile(path.toStdString()), std::string(size_t(size) - 1, 'x') + "\r\n\r\ny\r\n");
    EXPECT_FALSE(savedlog::write(folder.filePath(QStringLiteral("no/folder.log")), text));
    EXPECT_FALSE(savedlog::write(QString(), text));
    EXPECT_EQ(savedlog::startingPlace(path).folder, folder.path());
    Debug::setOutputFileName(folder.filePath(QStringLiteral("output.log")).toLatin1().constData());
    EXPECT_EQ(savedlog::startingPlace(QString()).folder, folder.path());
}

} // namespace
