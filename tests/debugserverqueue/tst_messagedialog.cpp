// The dialog of the message boxes: its buttons, keys, sizes and colours.

#include "debugserverqueue/debugmessagedialog.h"
#include "debugwindow/fontweight.h"
#include "support/guiapplication.h"
#include "support/maphost.h"

#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>
#include <map>

namespace {

using namespace Zorvan;
using Buttons = std::array<int, 3>;

constexpr QSize wide{1024, 768};
constexpr QSize narrow{320, 240};

DisplaySettings settingsFor(QSize display, QMargins keptFree = {})
{
    DisplaySettings settings = readDisplaySettings();
    settings.area = {display, keptFree};
    settings.fontSizePt = isWide(settings.area) ? 10 : 7;
    return settings;
}

BoxContent modal(const Buttons &buttons, const QString &message = QStringLiteral("message"))
{
    return {QStringLiteral("caption"), {}, message, true, 1, buttons};
}

BoxContent open(const Buttons &buttons)
{
    BoxContent content = modal(buttons);
    content.modal = false;
    return content;
}

QString name(const QWidget *widget)
{
    const auto *const button = qobject_cast<const QPushButton *>(widget);
    return button ? button->text() : widget ? widget->objectName() : QStringLiteral("none");
}

QTextEdit &textArea(const QDialog &dialog)
{
    return *dialog.findChild<QTextEdit *>();
}

class MessageDialog : public ::testing::Test
{
protected:
    /// Shows the box and gives it the focus.
    debugMessageDialog &show(const BoxContent &content, const DisplaySettings &settings = settingsFor(wide))
    {
        m_dialog = std::make_unique<debugMessageDialog>(content, settings);
        m_dialog->show();
        m_dialog->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
        return *m_dialog;
    }

    /// The code with which a box ends when its user does something.
    template <typename Act>
    int answer(const BoxContent &content, Act act)
    {
        debugMessageDialog &dialog = show(content);
        act(dialog);
        EXPECT_FALSE(dialog.isVisible());
        return debugMessageDialog::codeOf(dialog.result());
    }

private:
    const test::TestApplication<QApplication> m_application;
    std::unique_ptr<debugMessageDialog> m_dialog;
};

TEST_F(MessageDialog, HasTheButtonsThatWereAskedFor)
{
    struct Row
    {
        BoxContent content;
        const char *buttons;
        const char *defaultButton;
    };
    for (const Row &row : std::initializer_list<Row>{
             {modal({1, 0, 0}), "OK", "OK"},
             {modal({3, 4 + 16, 2}), "Yes No Cancel", "No"},
             {modal({17, 18, 0}), "OK Cancel", "Cancel"},
             {modal({0, 0, 0}), "OK", "OK"},
             {modal({0, 2, 0}), "OK Cancel", "OK"},
             {modal({256, 0, 2}), "OK Cancel", "OK"},
             {modal({2, 16, 0}), "Cancel", "Cancel"},
             {modal({2, 16 + 1, 0}), "Cancel OK", "OK"},
             {modal({16, 0, 0}), "OK", "OK"},
             {modal({2, 0, 16 + 5}), "Cancel Abort", "Abort"},
             {modal({32, 2, 0}), "OK Cancel", "OK"},
             {modal({8, 0, 0}), "", ""},
             {modal({8 + 16, 15, 7}), "Ignore", "Ignore"},
             {modal({-1, -16, 6}), "Retry", "Retry"},
             {open({0, 0, 0}), "", ""},
             {open({0, 1, 2}), "", ""},
             {open({16, 2, 0}), "OK Cancel", "OK"},
             {open({256, 2, 0}), "Cancel", "Cancel"},
             {open({3, 4 + 16, 0}), "Yes No", "No"},
         }) {
        const debugMessageDialog &dialog = show(row.content);
        EXPECT_EQ(test::buttonsOf(dialog), row.buttons);
        const auto *const focused = qobject_cast<QPushButton *>(dialog.focusWidget());
        EXPECT_EQ(focused && focused->isDefault() ? focused->text().toStdString() : "", row.defaultButton);
    }
}

TEST_F(MessageDialog, EndsByTheKeyboard)
{
    const auto pressKeys = [](std::initializer_list<Qt::Key> keys) {
        return [keys](QDialog &dialog) {
            for (const Qt::Key key : keys)
                QTest::keyClick(dialog.focusWidget(), key);
        };
    };
    const BoxContent content = modal({3, 4 + 16, 2}, QStringLiteral("<h3>heading</h3>body"));
    EXPECT_EQ(answer(content, pressKeys({Qt::Key_Tab, Qt::Key_Enter})), 2);
    EXPECT_EQ(answer(content, pressKeys({Qt::Key_Backtab, Qt::Key_Space})), 3);
    EXPECT_EQ(answer(content, pressKeys({Qt::Key_Backtab, Qt::Key_Backtab, Qt::Key_Enter})), 4)
        << "from the text";
    EXPECT_EQ(answer(open({1, 0, 0}), pressKeys({Qt::Key_Escape})), -1);
    EXPECT_EQ(answer(content, [](QDialog &dialog) { dialog.accept(); }), 4);
    for (const int otherwise : {0, 1, -1, 0x200000, 0x4000 + 1})
        EXPECT_EQ(debugMessageDialog::codeOf(otherwise), -1);
}

TEST_F(MessageDialog, StaysWithoutButtonsUntilItIsTakenAway)
{
    debugMessageDialog &dialog = show(open({0, 0, 0}));
    QTest::keyClick(&dialog, Qt::Key_Escape);
    QTest::keyClick(&dialog, Qt::Key_Enter);
    dialog.close();
    dialog.accept();
    EXPECT_TRUE(dialog.isVisible());
}

/// Texts of every kind, by name.
std::map<std::string, BoxContent> contents()
{
    const QString heading = QStringLiteral("Level too high");
    const QString line = QStringLiteral("The output stage was switched off. ");
    const QString lines = (line + QLatin1Char('\n')).repeated(100);
    std::map<std::string, BoxContent> all;
    for (const int icon : {0, 2}) {
        const auto add = [&](const std::string &name, const QString &title, const QString &message) {
            all[name + (icon ? " with icon" : "")] = {
                QStringLiteral("caption"), title, message, true, icon, {1, 2, 0}};
        };
        add("empty", {}, {});
        add("line", {}, line);
        add("long line", {}, line.repeated(8));
        add("endless line", {}, line.repeated(200));
        add("word", {}, QStringLiteral("word").repeated(100));
        add("body", heading, line);
        add("long body", heading, line.repeated(8));
        add("rich body", heading, QStringLiteral("<p>") + line.repeated(8));
        add("endless body", heading, lines);
        add("word in body", heading, QStringLiteral("word").repeated(100));
        add("endless heading", line.repeated(60), lines);
        add("own heading", {}, QStringLiteral("<h1>Level</h1><p>") + line.repeated(8));
    }
    return all;
}

std::vector<const QWidget *> visibleParts(const QDialog &dialog)
{
    std::vector<const QWidget *> parts;
    for (const QWidget *const part : dialog.findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (part->isVisible())
            parts.push_back(part);
    }
    return parts;
}

bool cutsTextOff(const QWidget *part)
{
    if (const auto *const text = qobject_cast<const QTextEdit *>(part)) {
        const QSizeF size = text->document()->size();
        const bool scrolls = text->verticalScrollBar()->isVisible();
        return size.width() > text->viewport()->width()
            || (!scrolls && size.height() > text->viewport()->height());
    }
    if (part->hasHeightForWidth() && part->height() < part->heightForWidth(part->width()))
        return true;
    return part->width() < part->minimumSizeHint().width();
}

void expectNothingCutOff(const QDialog &dialog)
{
    const std::vector<const QWidget *> parts = visibleParts(dialog);
    for (const QWidget *const part : parts) {
        EXPECT_TRUE(dialog.rect().contains(part->geometry())) << name(part).toStdString();
        EXPECT_FALSE(cutsTextOff(part)) << name(part).toStdString();
        for (const QWidget *const other : parts) {
            EXPECT_TRUE(part == other || !part->geometry().intersects(other->geometry()))
                << name(part).toStdString() << " over " << name(other).toStdString();
        }
    }
}

void expectInMiddle(const QDialog &dialog, const DisplayArea &display)
{
    const QSize room = roomForBox(display);
    EXPECT_LE(dialog.width(), room.width());
    EXPECT_LE(dialog.height(), room.height());
    EXPECT_EQ(dialog.pos(), boxPosition(dialog.size(), display));
}

void expectNoNeedlessScrollBar(const QDialog &dialog, const DisplayArea &display)
{
    const QTextEdit &text = textArea(dialog);
    const bool scrolls = text.verticalScrollBar()->isVisible();
    EXPECT_FALSE(text.horizontalScrollBar()->isVisible());
    EXPECT_EQ(scrolls, text.verticalScrollBar()->maximum() > 0);
    EXPECT_TRUE(!scrolls || dialog.height() == roomForBox(display).height()) << "all room is used first";
    EXPECT_FALSE(scrolls && dialog.minimumSize() == dialog.maximumSize());
}

TEST_F(MessageDialog, ShowsAllOfItsTextInTheMiddleOfEveryDisplay)
{
    for (const DisplaySettings &settings :
         {settingsFor(wide), settingsFor(narrow), settingsFor(wide, {300, 10, 150, 200}),
          settingsFor(narrow, {0, 30, 20, 0}), settingsFor({200, 150})}) {
        for (const auto &[name, content] : contents()) {
            SCOPED_TRACE(name + " on " + std::to_string(settings.area.size.width()));
            debugMessageDialog dialog(content, settings);
            dialog.show();
            QCoreApplication::processEvents();
            expectNothingCutOff(dialog);
            expectInMiddle(dialog, settings.area);
            expectNoNeedlessScrollBar(dialog, settings.area);
        }
    }
}

TEST_F(MessageDialog, LetsTheUserReadAHugeTextToItsEnd)
{
    const QString line = QStringLiteral("0123456789 ").repeated(9) + QLatin1Char('\n');
    const QString rich = QStringLiteral("<h3>heading</h3><p>") + line.repeated(1000);
    for (const QString &message :
         {line.repeated(1000), line.repeated(1000).remove(QLatin1Char('\n')), rich}) {
        QTextEdit &text = textArea(show(modal({1, 0, 0}, message + QStringLiteral("the end"))));
        EXPECT_TRUE(text.toPlainText().trimmed().endsWith(QStringLiteral("the end")));
        QTest::keyClick(&text, Qt::Key_End);
        EXPECT_EQ(text.verticalScrollBar()->value(), text.verticalScrollBar()->maximum());
    }
}

TEST_F(MessageDialog, HasOneGroundAlsoWhenThePaletteChanges)
{
    debugMessageDialog &dialog = show(modal({1, 0, 0}, QStringLiteral("<h3>heading</h3>body")));
    for (const QColor &ground : {QColor(239, 239, 239), QColor(40, 40, 60), QColor(250, 240, 220)}) {
        const QPalette palette(ground);
        dialog.setPalette(palette);
        QTextEdit &text = textArea(dialog);
        const QImage picture = dialog.grab().toImage();
        const QRect area(text.geometry());
        EXPECT_EQ(picture.pixelColor(2, 2), ground);
        EXPECT_EQ(picture.pixelColor(area.topLeft()), ground);
        EXPECT_EQ(picture.pixelColor(area.bottomRight()), ground);
        EXPECT_EQ(text.palette().color(QPalette::Text), palette.color(QPalette::WindowText));
    }
}

TEST_F(MessageDialog, TakesDisplayAndFontFromTheHost)
{
    const QSize desktop = QGuiApplication::primaryScreen()->size();
    const auto expect = [](QSize size, QMargins keptFree, const char *font, int fontSize, int fontWeight) {
        const DisplaySettings settings = readDisplaySettings();
        EXPECT_EQ(settings.area.size, size);
        EXPECT_EQ(settings.area.keptFree, keptFree);
        EXPECT_EQ(settings.fontFamily, QLatin1String(font));
        EXPECT_EQ(settings.fontSizePt, fontSize);
        EXPECT_EQ(fontweight::toStore(debugMessageDialog(modal({1, 0, 0})).font()), fontWeight);
    };
    expect(desktop, {}, "Arial", 10, 50);
    test::MapHost host;
    const auto storeWidth = [&host](int width) {
        host.writeStringSetting("GuiDimensions", QStringLiteral("DisplayWidth"), QString::number(width));
    };
    storeWidth(320);
    host.writeStringSetting("GuiDimensions", QStringLiteral("DisplayHeight"), QStringLiteral("240"));
    int margin = 1;
    for (const char *const side : {"left", "top", "right", "bottom"})
        host.store((std::string(side) + "MessageBoxMargin").c_str(), margin++);
    host.store("MessageFontWeight", 75);
    expect(narrow, {1, 2, 3, 4}, "Lucinda Sans Unicode", 7, 75);
    storeWidth(0); // makes no sense, as the others do not
    host.store("MessageFontSize", -3);
    host.store("MessageFontWeight", 1000);
    host.store("leftMessageBoxMargin", 100000);
    expect({desktop.width(), 240}, {0, 2, 0, 4}, "Arial", 10, 99);
}

} // namespace
