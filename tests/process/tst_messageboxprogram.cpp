// The program that shows the native message box: its dialog without a screen, and what it refuses.

#include "messageboxprogram/box.h"
#include "support/childprocess.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QKeyEvent>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextEdit>
#include <QTimer>

#include <functional>
#include <gtest/gtest.h>

namespace {

class MessageBoxProgram : public testing::Test
{
protected:
    /// The answer if the user does this with the box.
    std::string answerTo(const std::function<void(QDialog &)> &action)
    {
        const std::unique_ptr<QDialog> box = makeBox(QStringLiteral("title"), QStringLiteral("text"));
        QTimer::singleShot(0, box.get(), [&] { action(*box); });
        return answerWord(box->exec());
    }
    static void press(QDialog &box, Qt::Key key)
    {
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(box.focusWidget(), &event);
    }

private:
    int m_count = 1;
    char m_name[5] = "test";
    char *m_arguments[2] = {m_name, nullptr};
    const bool m_withoutScreen = qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication m_application{m_count, m_arguments};
};

TEST_F(MessageBoxProgram, EachButtonGivesItsWord)
{
    std::string answers;
    for (int i = 0; i < 3; ++i)
        answers += answerTo([i](QDialog &box) { box.findChildren<QPushButton *>().at(i)->click(); }) + ' ';
    EXPECT_EQ(answers, "abort retry ignore ");
}

TEST_F(MessageBoxProgram, OnlyAButtonIsAnAnswer)
{
    EXPECT_EQ(answerTo([](QDialog &box) { press(box, Qt::Key_Escape); }), "closed");
    EXPECT_EQ(answerTo([](QDialog &box) { box.close(); }), "closed");
    EXPECT_EQ(answerTo([](QDialog &box) {
                  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_A})
                      press(box, key);
                  EXPECT_TRUE(box.isVisible()) << "somebody was typing when the box came up";
                  box.close();
              }),
              "closed");
}

TEST_F(MessageBoxProgram, LongTextCanBeScrolledAndCopied)
{
    const QString line = QStringLiteral("<b> & a line of a text that is far too long for one screen ");
    const QString text = (line.repeated(9) + QLatin1Char('\n')).repeated(300);
    for (const bool isLong : {false, true}) {
        const std::unique_ptr<QDialog> box = makeBox(QStringLiteral("title"), isLong ? text : line);
        box->show();
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        EXPECT_EQ(box->size(), box->size().boundedTo(screen));
        auto *const view = box->findChild<QTextEdit *>();
        EXPECT_EQ(view->verticalScrollBar()->maximum() > 0, isLong);
        EXPECT_EQ(view->horizontalScrollBar()->maximum(), 0);
        view->selectAll();
        view->copy();
        EXPECT_EQ(QApplication::clipboard()->text(), isLong ? text : line);
    }
}

TEST(MessageBoxProgramAlone, ReportsThatNobodySeesTheBox)
{
    for (const char *arguments : {"title text", "title", "title text more"}) {
        const auto result = Zorvan::test::runChild(std::string("QT_QPA_PLATFORM=offscreen '" PROGRAM "' ")
                                                   + arguments + " 2>/dev/null");
        EXPECT_EQ(result.exitCode, 2) << arguments;
        EXPECT_EQ(result.output, "");
    }
}

} // namespace
