#include "support/guiapplication.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>

namespace Zorvan::test {

namespace {

QString plainText(const QAbstractButton &button)
{
    return button.text().remove(QLatin1Char('&'));
}

QList<QPushButton *> visibleButtons(const QDialog &dialog)
{
    QList<QPushButton *> buttons = dialog.findChildren<QPushButton *>();
    buttons.erase(std::remove_if(buttons.begin(), buttons.end(),
                                 [&](QPushButton *button) { return !button->isVisibleTo(&dialog); }),
                  buttons.end());
    std::sort(buttons.begin(), buttons.end(), [&](QPushButton *left, QPushButton *right) {
        return left->mapTo(&dialog, QPoint()).x() < right->mapTo(&dialog, QPoint()).x();
    });
    return buttons;
}

} // namespace

void chooseTestPlatform()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

bool runUntil(const std::function<bool()> &holds, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    QEventLoop loop;
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &loop, [&] {
        if (holds() || std::chrono::steady_clock::now() > end)
            loop.quit();
    });
    poll.start(1);
    loop.exec();
    return holds();
}

void waitIdle(const std::function<bool()> &holds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!holds()) {
        if (std::chrono::steady_clock::now() > end)
            giveUp("nothing happened");
        std::this_thread::yield();
    }
}

void giveUp(const char *why)
{
    std::fprintf(stderr, "%s\n", why);
    std::fflush(nullptr);
    std::_Exit(1);
}

void inMenu(const std::function<void()> &open, const std::function<void(QMenu &)> &act)
{
    bool wasOpen = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, [&] {
        if (auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            look.stop();
            wasOpen = true;
            act(*menu);
        }
    });
    look.start(1);
    open();
    EXPECT_TRUE(wasOpen) << "no menu was shown";
}

void chooseInMenu(const std::function<void()> &open, const char *entry)
{
    inMenu(open, [entry](QMenu &menu) {
        for (QAction *const action : menu.actions()) {
            if (action->text() == QLatin1String(entry))
                menu.setActiveAction(action);
        }
        EXPECT_NE(menu.activeAction(), nullptr) << entry;
        const int key = menu.activeAction() != nullptr ? Qt::Key_Return : Qt::Key_Escape;
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&menu, &press);
    });
}

QList<QDialog *> allDialogs()
{
    QList<QDialog *> dialogs;
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (auto *const dialog = qobject_cast<QDialog *>(window))
            dialogs.append(dialog);
    }
    return dialogs;
}

QList<QDialog *> openDialogs()
{
    QList<QDialog *> dialogs;
    for (QDialog *const dialog : allDialogs()) {
        if (dialog->isVisible())
            dialogs.append(dialog);
    }
    return dialogs;
}

std::string buttonsOf(const QDialog &dialog)
{
    QStringList texts;
    for (const QPushButton *const button : visibleButtons(dialog))
        texts.append(plainText(*button));
    return texts.join(QLatin1Char(' ')).toStdString();
}

void clickButton(QDialog &dialog, const char *text)
{
    for (QPushButton *const button : visibleButtons(dialog)) {
        if (plainText(*button) == QLatin1String(text)) {
            button->click();
            return;
        }
    }
    ADD_FAILURE() << "no button " << text << " beside " << buttonsOf(dialog);
    dialog.close();
}

QWidget *debugWindow()
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->inherits("Zorvan::DebugWindow"))
            return window;
    }
    return nullptr;
}

std::string windowText()
{
    for (QWidget *const view : QApplication::allWidgets()) {
        if (!view->inherits("Zorvan::QProtocolWidget"))
            continue;
        QGuiApplication::clipboard()->clear();
        QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
        QCoreApplication::sendEvent(view, &copy);
        return QGuiApplication::clipboard()->text().toStdString();
    }
    return {};
}

Robot::Robot()
{
    connect(&m_timer, &QTimer::timeout, this, &Robot::look);
    m_timer.start(1);
}

void Robot::click(const char *button)
{
    then([button](QDialog &dialog) { clickButton(dialog, button); });
}

void Robot::close()
{
    then([](QDialog &dialog) { dialog.close(); });
}

void Robot::leaveOpen()
{
    then([](QDialog &) {});
}

void Robot::choose(const QString &path)
{
    then([path](QDialog &dialog) {
        auto *const name = dialog.findChild<QLineEdit *>();
        ASSERT_NE(name, nullptr) << "not a file dialog";
        name->setText(path);
        dialog.accept();
    });
}

void Robot::look()
{
    for (QDialog *const dialog : openDialogs()) {
        if (dialog->property("seen").toBool())
            continue;
        dialog->setProperty("seen", true);
        Act act = [](QDialog &stranger) {
            ADD_FAILURE() << "nobody expects " << stranger.windowTitle().toStdString();
            stranger.close();
        };
        if (!m_acts.empty()) {
            act = std::move(m_acts.front());
            m_acts.pop_front();
        }
        // Posted: an act may open further dialogs, and a timer does not fire inside its own time-out.
        const auto run = [act, target = QPointer<QDialog>(dialog)] {
            if (target)
                act(*target);
        };
        QMetaObject::invokeMethod(this, run, Qt::QueuedConnection);
    }
}

} // namespace Zorvan::test
