// Keys, focus and the window state of boxes. Runs offscreen and, where there is one, on a display of its own.

#include "boxtest.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

class BoxKeys : public BoxTest
{
protected:
    /// A key as the window system delivers it: to the window, which passes it on to the focus. It is not
    /// released: the window may be gone.
    static void press(QWidget &window, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyPress(window.windowHandle(), key, modifiers);
    }
    static void activate(QWidget &window)
    {
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    /// The text of the focused button, "-" if something else has the focus.
    static std::string focus(const QWidget &window)
    {
        const auto *const button = qobject_cast<QPushButton *>(window.focusWidget());
        return button ? button->text().remove(QLatin1Char('&')).toStdString() : "-";
    }
};

TEST_F(BoxKeys, EnterAndAltF12PressTheDefaultButton)
{
    const auto answerTo = [this](Qt::Key key, Qt::KeyboardModifiers modifiers, bool modal) {
        robot->then([=](QDialog &box) {
            activate(box);
            press(box, key, modifiers);
        });
        return ask(modal, yes, no | asDefault, cancel);
    };
    EXPECT_EQ(answerTo(Qt::Key_Return, Qt::NoModifier, true), no);
    EXPECT_EQ(answerTo(Qt::Key_F12, Qt::AltModifier, true), no);
    EXPECT_EQ(answerTo(Qt::Key_Escape, Qt::NoModifier, true), -1);
    EXPECT_GE(answerTo(Qt::Key_F12, Qt::AltModifier, false), 2);
    EXPECT_TRUE(runUntil([this] { return robot->left() == 0 && allDialogs().isEmpty(); }));
    robot->then([](QDialog &box) {
        activate(box);
        press(box, Qt::Key_F12);
        EXPECT_TRUE(box.isVisible()) << "F12 alone means nothing";
        box.close();
    });
    EXPECT_EQ(ask(true, ok), -1);
}

TEST_F(BoxKeys, TabStaysInsideTheBox)
{
    const auto walk = [](QDialog &box) {
        activate(box);
        box.findChildren<QPushButton *>().first()->setFocus();
        for (int i = 0; i < 6; ++i)
            press(box, i % 2 ? Qt::Key_Backtab : Qt::Key_Tab, Qt::ShiftModifier);
        EXPECT_EQ(focus(box), "-") << "the text is the first";
        press(box, Qt::Key_Tab);
        EXPECT_EQ(focus(box), "Yes");
        for (int i = 0; i < 6; ++i)
            press(box, Qt::Key_Tab);
        EXPECT_EQ(focus(box), "Cancel");
        press(box, Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(focus(box), "No");
        box.close();
    };
    for (const bool modal : {true, false}) {
        robot->then(walk);
        Debug::debugMessageBox(QStringLiteral("caption"), QStringLiteral("heading"), QStringLiteral("text"),
                               modal, 0, yes, no, cancel);
    }
    EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); }));
}

TEST_F(BoxKeys, OfOtherWindowsAreLeftAloneWhileABoxIsOpen)
{
    const int id = openBox(ok);
    QWidget ofHost;
    auto *const layout = new QVBoxLayout(&ofHost);
    auto *const first = new QLineEdit(&ofHost);
    auto *const last = new QLineEdit(&ofHost);
    layout->addWidget(first);
    layout->addWidget(last);
    ofHost.show();
    activate(ofHost);
    last->setFocus();
    press(ofHost, Qt::Key_Tab);
    EXPECT_EQ(ofHost.focusWidget(), first);
    press(ofHost, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(ofHost.focusWidget(), last);
    Debug::removeMessageBox(id);
    EXPECT_TRUE(runUntil([] { return allDialogs().isEmpty(); }));
    QObject::connect(last, &QLineEdit::returnPressed, [] { ADD_FAILURE() << "no box is left"; });
    press(ofHost, Qt::Key_F12, Qt::AltModifier);
}

TEST_F(BoxKeys, AMinimisedBoxStays)
{
    const int id = openBox(ok, cancel);
    const QList<QDialog *> boxes = openDialogs();
    ASSERT_EQ(boxes.size(), 1);
    const QPointer<QDialog> box(boxes.first());
    box->showMinimized();
    runOn();
    ASSERT_NE(box, nullptr) << "not answered";
    box->showNormal();
    runOn();
    ASSERT_NE(box, nullptr);
    Debug::removeMessageBox(id);
    EXPECT_TRUE(runUntil([&] { return box.isNull(); })) << "still known by its id";
}

} // namespace
