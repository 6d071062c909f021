// The message view under the hands of a user.

#include "debugwindow/protocolwidget.h"
#include "debugwindow/viewcommands.h"
#include "lowlevelfunctions/loglines.h"
#include "support/guiapplication.h"

#include <QBackingStore>
#include <QClipboard>
#include <QInputDialog>
#include <QPaintEvent>
#include <QPointer>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>
#include <map>
#include <random>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

std::uint64_t s_availableMemory = 0;
int s_timesAsked = 0;

/// A view that has room for ten rows.
class MessageView : public ::testing::Test
{
protected:
    explicit MessageView(const char *scale = "1")
        : isScaled(qputenv("QT_SCALE_FACTOR", scale))
    {
        view->setFont(QFont(QStringLiteral("DejaVu Sans Mono"), 10));
        view->show();
        fit(10);
    }
    ~MessageView() override { EXPECT_EQ(robot.left(), 0U) << "fewer dialogs than expected"; }

    void fit(int rows)
    {
        spacing = font().lineSpacing();
        const int missing = rows * spacing + spacing / 2 - view->viewport()->height();
        view->resize(60 * spacing, view->height() + missing);
        QCoreApplication::processEvents();
    }
    LatinFont font() const { return LatinFont(view->font(), view->viewport()); }
    QScrollBar &bar() { return *view->verticalScrollBar(); }
    void run(ViewCommand command) { view->command(static_cast<int>(command)); }
    void append(int first, int last)
    {
        std::string text;
        for (int i = first; i <= last; ++i)
            text.append(first == i ? "" : "\n").append("row " + std::to_string(i));
        append(text);
    }
    void append(std::string_view text) { view->appendText(text); }
    /// In the middle of a column of the row that is \a line lines below the top.
    QPoint at(int line, int column) const
    {
        const qreal x = font().width(std::string(static_cast<std::size_t>(column), 'x')) - 2;
        return {qRound(x), line * spacing + spacing / 2};
    }
    void press(QPoint point) { QTest::mousePress(view->viewport(), Qt::LeftButton, {}, point); }
    void move(QPoint point)
    {
        QMouseEvent event(QEvent::MouseMove, point, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view->viewport(), &event);
    }
    void release(QPoint point) { QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, point); }
    void select(QPoint from, QPoint to)
    {
        press(from);
        move(to);
        release(to);
    }
    /// False: the key went on to the base class, and that had no use for it.
    bool key(int key, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(view.get(), &event);
        return event.isAccepted();
    }
    /// The next dialog is that of a command, has a preset, and gets an answer.
    void answer(ViewCommand command, const std::string &preset, const std::string &text)
    {
        static const std::map<ViewCommand, std::pair<const char *, const char *>> titles = {
            {ViewCommand::Find, {"Find", "Find Text:"}},
            {ViewCommand::GotoLine, {"Goto Line", "Goto Line:"}},
            {ViewCommand::AddMarker, {"Add Pattern", "Output Contains:"}},
            {ViewCommand::RemoveMarker, {"Remove Pattern", "Output Contains:"}},
            {ViewCommand::MarkExtraLines, {"Extra Lines", "Display Lines Around Marker:"}}};
        robot.then([=](QDialog &dialog) {
            auto *const input = qobject_cast<QInputDialog *>(&dialog);
            ASSERT_NE(input, nullptr);
            EXPECT_EQ(input->windowTitle(), QLatin1String(titles.at(command).first));
            EXPECT_EQ(input->labelText(), QLatin1String(titles.at(command).second));
            EXPECT_EQ(input->textValue(), QString::fromStdString(preset));
            input->setTextValue(QString::fromStdString(text));
            input->accept();
        });
    }
    void ask(ViewCommand command, const std::string &preset, const std::string &text)
    {
        answer(command, preset, text);
        run(command);
    }
    /// The rows, in lines from the top, behind which there is a colour.
    std::string linesIn(Qt::GlobalColor color)
    {
        const QImage image = view->viewport()->grab().toImage();
        std::string lines;
        for (int y = spacing / 4 + 1; y < image.height(); y += spacing) {
            int x = 0;
            while (x < image.width() && image.pixelColor(x, y) != QColor(color))
                ++x;
            if (x < image.width())
                lines += std::to_string(y / spacing) + ' ';
        }
        return lines;
    }
    std::string copied() const { return view->copyText().toStdString(); }

    const bool isScaled; // before the application reads it
    TestApplication<QApplication> application;
    Robot robot;
    std::unique_ptr<QProtocolWidget> view =
        std::make_unique<QProtocolWidget>(nullptr, [] { return ++s_timesAsked, s_availableMemory; });
    int spacing = 1;
};

TEST_F(MessageView, AppendsALineForEachPieceAndFollows)
{
    append("a\nb\n");
    view->appendText(QString::fromUtf8("\xC3\xA9\xE2\x82\xAC"));
    EXPECT_EQ(view->buffer().lineCount(), 4U);
    EXPECT_EQ(view->copyText(), QString::fromLatin1("a\nb\n\n\xE9?"));
    append(5, 50);
    EXPECT_TRUE(bar().maximum() == 50 && bar().value() == 50);
    run(ViewCommand::AutoScroll);
    append(51, 60);
    EXPECT_TRUE(bar().maximum() == 60 && bar().value() == 50);
    run(ViewCommand::Clear);
    EXPECT_TRUE(bar().maximum() == 0 && view->buffer().lineCount() == 0);
    QGuiApplication::clipboard()->setText(QStringLiteral("of before"));
    run(ViewCommand::Copy);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString());
    EXPECT_EQ(view->horizontalScrollBar()->maximum(), 256);
    EXPECT_TRUE(bar().isVisible() && view->horizontalScrollBar()->isVisible());
}

TEST_F(MessageView, AsksForMemoryOncePer500Lines)
{
    const std::size_t loggedBefore = messagesIn("GYX-syslog-0.log").size();
    const auto timesAsked = [asked = s_timesAsked] { return s_timesAsked - asked; };
    s_availableMemory = std::uint64_t(1) << 40;
    append(1, 1);
    EXPECT_EQ(timesAsked(), 1);
    EXPECT_EQ(view->buffer().memoryLimit(), 4294966272U);
    s_availableMemory = 1000 * 1024;
    for (int i = 0; i < 499; ++i)
        append(i, i);
    EXPECT_EQ(timesAsked(), 1);
    append(0, 0);
    EXPECT_EQ(timesAsked(), 2);
    const std::uint64_t total = view->buffer().allocatedBytes() / 1024 + 1000;
    EXPECT_EQ(view->buffer().memoryLimit(), total / 2 * 1024);
    for (const std::uint64_t unused : {std::uint64_t(0), std::uint64_t(1) << 40}) {
        s_availableMemory = unused;
        append(1, 2000);
        EXPECT_EQ(view->buffer().memoryLimit(), total / 2 * 1024);
    }
    EXPECT_EQ(timesAsked(), 4) << "once in each batch";
    append(1, 499);
    EXPECT_EQ(timesAsked(), 4);
    const std::string text =
        "source/debugwindow(497): QProtocolWidget memory check: maximum messages size limit now is ";
    const std::vector<std::string> logged = messagesIn("GYX-syslog-0.log");
    ASSERT_EQ(logged.size(), loggedBefore + 2);
    EXPECT_EQ(logged[loggedBefore], text + "4294966272 Bytes");
    EXPECT_EQ(logged[loggedBefore + 1], text + std::to_string(total / 2 * 1024) + " Bytes");
}

TEST_F(MessageView, SelectsWithTheMouse)
{
    append(0, 5);
    append("\033[31mred\033[0m and more");
    select(at(1, 3), at(3, 2));
    EXPECT_EQ(copied(), " 1\nrow 2\nro");
    EXPECT_EQ(linesIn(Qt::lightGray), "1 2 3 ");
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ShiftModifier, at(2, 2));
    EXPECT_EQ(copied(), " 1\nro") << "the end was moved";
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ControlModifier, at(0, 2));
    QTest::mouseClick(view->viewport(), Qt::RightButton, {}, at(4, 3));
    EXPECT_EQ(copied(), " 1\nro");
    select(at(3, 4), at(1, 1));
    EXPECT_EQ(copied(), "ow 1\nrow 2\nrow ") << "upwards";
    select(at(6, 3), at(9, 7));
    EXPECT_EQ(copied(), " and") << "the last row ends the selection";
    view->horizontalScrollBar()->setValue(1);
    run(ViewCommand::ShowLineNumbers);
    const int shift = qRound(font().width("7 ")) - font().pointSize();
    select(at(1, 2) + QPoint(shift, 0), at(1, 4) + QPoint(shift, 0));
    EXPECT_EQ(copied(), "w ");
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, at(2, 2));
    EXPECT_EQ(linesIn(Qt::lightGray), "") << "a click ends it";
    run(ViewCommand::SelectAll);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().size(), view->copyText().size());
    EXPECT_EQ(copied().find("\033[31m"), std::string("row 0\n").size() * 6) << "as it was stored";
    append("");
    EXPECT_EQ(linesIn(Qt::lightGray), "") << "so does output";
    press(at(0, 1));
    append("");
    move(at(1, 3));
    QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::ControlModifier, at(0, 2));
    move(at(2, 3));
    EXPECT_EQ(linesIn(Qt::lightGray), "") << "nothing was begun";
}

TEST_F(MessageView, FollowsAMouseThatIsDraggedOutside)
{
    append(0, 11);
    bar().setValue(0);
    press(at(9, 1));
    move({1, view->viewport()->height()});
    EXPECT_EQ(copied(), "ow 9\nr") << "by a row, however much of the scroll bar that takes";
    release({0, 0});
    append(12, 99);
    bar().setValue(0);
    press(at(0, 1));
    move({0, view->viewport()->height()});
    move({1, view->viewport()->height()});
    EXPECT_EQ(copied().substr(copied().find("9")), "9\nrow 10\nr");
    EXPECT_TRUE(runUntil([this] { return copied().find("row 14\n") != std::string::npos; })) << "at rest";
    move(at(5, 1));
    const int value = bar().value();
    move({0, -1});
    EXPECT_LT(bar().value(), value);
    release({0, -1});
}

TEST_F(MessageView, FindsTextAndGoesToIt)
{
    append(0, 99);
    answer(ViewCommand::Find, "", "row 5");
    key(Qt::Key_F, Qt::ControlModifier);
    EXPECT_EQ(bar().value(), 5 - 10 / 2 + 1) << "in the middle, as far as there are rows above";
    EXPECT_EQ(linesIn(Qt::cyan), "4 ");
    EXPECT_FALSE(key(Qt::Key_G, Qt::ControlModifier)) << "the key goes on";
    EXPECT_EQ(bar().value(), 50 - 10 / 2 + 5);
    EXPECT_EQ(linesIn(Qt::cyan) + linesIn(Qt::yellow), "5 6 7 8 9 ");
    run(ViewCommand::FindNext);
    EXPECT_EQ(bar().value(), 50) << "it was to be seen already";
    EXPECT_EQ(linesIn(Qt::cyan), "6 ");
    EXPECT_FALSE(key(Qt::Key_G, Qt::ControlModifier | Qt::ShiftModifier));
    run(ViewCommand::FindPrevious);
    run(ViewCommand::FindPrevious);
    EXPECT_EQ(linesIn(Qt::cyan), "4 ");
    EXPECT_EQ(bar().value(), 1) << "the first one stays";
    select(at(4, 3), at(7, 1));
    ask(ViewCommand::Find, " 5", "nowhere");
    EXPECT_EQ(linesIn(Qt::lightGray), "");
    ask(ViewCommand::Find, "nowhere", "row");
    EXPECT_EQ(linesIn(Qt::cyan), "0 ");
    ask(ViewCommand::Find, "row", "");
    run(ViewCommand::FindNext);
    EXPECT_EQ(linesIn(Qt::cyan) + linesIn(Qt::yellow), "");
    run(ViewCommand::Clear);
    append('\n' + std::string(5000000, 'x') + "\n");
    run(ViewCommand::SelectAll);
    ask(ViewCommand::Find, std::string(1024, 'x'), "");
}

TEST_F(MessageView, GoesToALine)
{
    ask(ViewCommand::GotoLine, "", "7");
    EXPECT_EQ(bar().value(), 0) << "there is none";
    append(0, 99);
    const std::pair<const char *, int> places[] = {{"40", 39},  {"", 39},  {"41", 39},         {"x", 0},
                                                   {"99", 100}, {"-5", 0}, {"2000000000", 100}};
    for (const auto &[text, value] : places) {
        ask(ViewCommand::GotoLine, "", text);
        EXPECT_EQ(bar().value(), value) << text;
    }
    select(at(3, 1), at(2, 1));
    answer(ViewCommand::GotoLine, "93", "50");
    key(Qt::Key_L, Qt::ControlModifier);
    robot.close();
    run(ViewCommand::GotoLine);
    EXPECT_EQ(bar().value(), 50);
}

TEST_F(MessageView, MarksLinesAndKeepsMarkersInFiles)
{
    const QString path = QString::fromStdString(libraryFile("kept"));
    append(0, 9);
    select(at(3, 5), at(3, 4));
    answer(ViewCommand::AddMarker, "3", "row 2");
    key(Qt::Key_O, Qt::ControlModifier);
    ask(ViewCommand::AddMarker, "", "b");
    ask(ViewCommand::AddMarker, "", "");
    robot.choose(path);
    run(ViewCommand::SaveMarkers);
    EXPECT_EQ(readFile(path.toStdString() + ".dbgfilt"), "row 2|b\n");
    writeFile(path.toStdString() + ".DBGFILT.dbgfilt", "other");
    robot.choose(path + QStringLiteral(".DBGFILT"));
    robot.click("No");
    run(ViewCommand::SaveMarkers);
    EXPECT_EQ(readFile(path.toStdString() + ".DBGFILT.dbgfilt"), "other");
    robot.choose(path + QStringLiteral(".dbgfilt"));
    key(Qt::Key_O, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(view->buffer().patterns(), QStringLiteral("row 2|b|row 2|b\n"));
    writeFile(path.toStdString(), "");
    robot.choose(path);
    run(ViewCommand::LoadMarkers);
    answer(ViewCommand::RemoveMarker, "", "b");
    key(Qt::Key_R, Qt::ControlModifier);
    EXPECT_EQ(view->buffer().patterns(), QStringLiteral("row 2|row 2|b\n"));
    run(ViewCommand::ClearMarkers);
    EXPECT_TRUE(view->buffer().patterns().isEmpty());
}

TEST_F(MessageView, ShowsOnlyMarkedLinesAndTheirNeighbours)
{
    append(0, 50);
    key(Qt::Key_M, Qt::AltModifier);
    EXPECT_EQ(bar().maximum(), 0);
    ask(ViewCommand::AddMarker, "", "0");
    EXPECT_EQ(bar().maximum(), 6);
    EXPECT_EQ(copied(), "row 0\nrow 10\nrow 20\nrow 30\nrow 40\nrow 50");
    answer(ViewCommand::MarkExtraLines, "0", "1");
    key(Qt::Key_E, Qt::AltModifier);
    EXPECT_EQ(bar().maximum(), 17);
    EXPECT_EQ(bar().value(), 17);
    EXPECT_EQ(copied().substr(0, 30), "row 0\nrow 1\nrow 9\nrow 10\nrow 1");
    append(51, 51);
    EXPECT_EQ(view->buffer().text(16), QStringLiteral("row 51"));
    const std::pair<const char *, unsigned> answers[] = {{"x", 0}, {"3", 3}, {"-2", 0},
                                                         {"2", 2}, {"", 2},  {"4000000000", 100000}};
    for (const auto &[text, count] : answers) {
        ask(ViewCommand::MarkExtraLines, std::to_string(view->buffer().extraLines()), text);
        EXPECT_EQ(view->buffer().extraLines(), count) << text;
    }
    run(ViewCommand::MarkedOutputOnly);
    EXPECT_EQ(bar().maximum(), 52);
}

TEST_F(MessageView, ScrollsByKeysAndPassesOthersOn)
{
    append(0, 99);
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, int, bool> keys[] = {
        {Qt::Key_Up, Qt::NoModifier, 99, true},          {Qt::Key_Down, Qt::NoModifier, 100, true},
        {Qt::Key_PageUp, Qt::NoModifier, 90, true},      {Qt::Key_PageUp, Qt::ShiftModifier, 70, true},
        {Qt::Key_PageDown, Qt::ShiftModifier, 90, true}, {Qt::Key_Home, Qt::NoModifier, 90, false},
        {Qt::Key_Home, Qt::ControlModifier, 0, false},   {Qt::Key_PageDown, Qt::NoModifier, 10, true},
        {Qt::Key_S, Qt::ControlModifier, 10, true},      {Qt::Key_X, Qt::NoModifier, 10, false},
        {Qt::Key_End, Qt::ControlModifier, 100, false},
    };
    bar().setPageStep(20);
    for (const auto &[pressed, modifiers, value, isTaken] : keys) {
        EXPECT_EQ(key(pressed, modifiers), isTaken) << pressed;
        EXPECT_EQ(bar().value(), value) << pressed;
    }
    EXPECT_TRUE(key(Qt::Key_Right) && view->horizontalScrollBar()->value() == 1);
    EXPECT_TRUE(key(Qt::Key_A, Qt::ControlModifier) && view->focusPolicy() == Qt::StrongFocus);
}

TEST_F(MessageView, SaysWhenItsMenuOrADialogIsOpenAndMayGoMeanwhile)
{
    std::string states;
    QObject::connect(view.get(), &QProtocolWidget::modalStateChanged,
                     [&states](bool open) { states += open ? '(' : ')'; });
    append(0, 3);
    QTimer::singleShot(0, [] { // "Select All"
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
            QTest::keyClick(QApplication::activePopupWidget(), key);
    });
    QContextMenuEvent event(QContextMenuEvent::Keyboard, view->rect().center());
    QCoreApplication::sendEvent(view.get(), &event);
    EXPECT_EQ(linesIn(Qt::lightGray), "0 1 2 3 ");
    robot.close();
    run(ViewCommand::AddMarker);
    EXPECT_EQ(states, "()()");
    for (const ViewCommand command :
         {ViewCommand::Find, ViewCommand::GotoLine, ViewCommand::AddMarker, ViewCommand::RemoveMarker,
          ViewCommand::MarkExtraLines, ViewCommand::SaveMarkers, ViewCommand::LoadMarkers}) {
        view = std::make_unique<QProtocolWidget>();
        robot.then([this](QDialog &) { view.reset(); });
        run(command);
        EXPECT_EQ(view, nullptr);
    }
    view = std::make_unique<QProtocolWidget>();
    QTimer::singleShot(0, [this] { view.reset(); });
    QCoreApplication::sendEvent(view.get(), &event);
    EXPECT_EQ(view, nullptr);
}

/// What was painted of a widget, in pixels.
class PaintedPixels : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        const auto region =
            event->type() == QEvent::Paint ? static_cast<QPaintEvent *>(event)->region() : QRegion();
        for (const QRect &rect : region)
            count += rect.width() * rect.height();
        return false;
    }
    int count = 0;
};

TEST_F(MessageView, PaintsOnlyRowsThatAreNew)
{
    fit(40);
    append(0, 999);
    QCoreApplication::processEvents();
    PaintedPixels painted;
    view->viewport()->installEventFilter(&painted);
    const int row = view->viewport()->width() * spacing;
    append(0, 0);
    append(1, 1);
    QCoreApplication::processEvents();
    key(Qt::Key_Up);
    QCoreApplication::processEvents();
    EXPECT_LT(painted.count, 12 * row);
    run(ViewCommand::AutoScroll);
    bar().setValue(10);
    QCoreApplication::processEvents();
    painted.count = 0;
    append(2, 2);
    QCoreApplication::processEvents();
    EXPECT_EQ(painted.count, 0) << "nothing new is to be seen";
}

class PictureOfMessages : public MessageView, public ::testing::WithParamInterface<const char *>
{
protected:
    PictureOfMessages()
        : MessageView(GetParam())
    {}
    void appendSome()
    {
        static const char *const lines[] = {"\xC5gjpqy|_ plain", "\033[41m\xC5 red ground gj", "mark mark",
                                            "\033[32mmark gj", "find"};
        std::string text;
        for (unsigned more = random() % 4; more > 0; --more)
            text.append(lines[random() % 5]).append("\n");
        append(text);
    }
    void act();
    [[nodiscard]] bool isThatOfAFullRepaint() const
    {
        QCoreApplication::processEvents();
        const auto *const shown = static_cast<QImage *>(view->backingStore()->paintDevice());
        return *shown == view->grab().toImage();
    }

    std::mt19937 random{1};
};

void PictureOfMessages::act()
{
    const int value = static_cast<int>(random() % 12);
    const std::function<void()> actions[] = {
        [&] { run(ViewCommand::ShowLineNumbers); },
        [&] { run(ViewCommand::AutoScroll); },
        [&] { run(ViewCommand::MarkedOutputOnly); },
        [&] { run(value == 0 ? ViewCommand::Clear : ViewCommand::FindNext); },
        [&] { run(ViewCommand::SelectAll); },
        [&] { select(at(value, 2), at(value / 2, 6)); },
        [&] { view->horizontalScrollBar()->setValue(value / 4); },
        [&] { fit(5 + value); },
        [&] {
            view->buffer().setMaximumLineCount(value == 0 ? 100 : 0);
            if (value == 1)
                run(ViewCommand::Clear); // ends the ring, in which everything is painted anew
        },
        [&] { view->buffer().setExtraLines(value % 3), view->updateScrollRange(); },
        [&] { view->setFont(QFont(view->font().family(), 8 + value / 3)); },
        [&] { bar().setValue(value * 20); },
        [&] { bar().setValue(bar().value() + value - 6); },
        [&] { key(Qt::Key_End, Qt::ControlModifier); },
        [&] { key(value % 2 == 0 ? Qt::Key_PageUp : Qt::Key_PageDown); },
        [&] { key(value % 2 == 0 ? Qt::Key_Up : Qt::Key_Down); },
    };
    if (random() % 2 == 0)
        appendSome();
    else
        actions[random() % std::size(actions)]();
}

TEST_P(PictureOfMessages, IsThatOfAFullRepaintWhateverWasMoved)
{
    view->buffer().addPattern(QStringLiteral("mark"));
    ask(ViewCommand::Find, "", "find");
    for (int i = 0; i < 1200; ++i) {
        act();
        if (i % 2 == 0)
            continue;
        ASSERT_TRUE(isThatOfAFullRepaint()) << "after action " << i;
    }
}

TEST_P(PictureOfMessages, ShowsLinesThatCameAfterTheirRows)
{
    view->buffer().addPattern(QStringLiteral("mark"));
    view->buffer().setExtraLines(2);
    run(ViewCommand::MarkedOutputOnly);
    for (const char *const text : {"one\nmark", "late"}) {
        append(text);
        EXPECT_TRUE(isThatOfAFullRepaint()) << text;
    }
}

INSTANTIATE_TEST_SUITE_P(AtScale, PictureOfMessages, ::testing::Values("1", "2", "1.5"));

TEST_F(MessageView, HasWhitePaperUnderADarkPalette)
{
    view->setPalette(QPalette(Qt::darkBlue));
    append(0, 1);
    EXPECT_EQ(linesIn(Qt::white), "0 1 2 3 4 5 6 7 8 9 10 ");
}

} // namespace
