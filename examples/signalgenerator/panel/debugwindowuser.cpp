#include "panel/debugwindowuser.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QInputDialog>
#include <QKeyEvent>
#include <QPixmap>

namespace SignalGenerator::DebugWindowUser {

namespace {

template <typename Widget>
Widget *ofClass(const QList<Widget *> &widgets, const char *name)
{
    for (Widget *const widget : widgets)
        if (qstrcmp(widget->metaObject()->className(), name) == 0)
            return widget;
    return nullptr;
}

QWidget *window()
{
    return ofClass(QApplication::topLevelWidgets(), "Zorvan::DebugWindow");
}

QAbstractScrollArea *messages()
{
    QWidget *const shown = window();
    return shown ? ofClass(shown->findChildren<QAbstractScrollArea *>(), "Zorvan::QProtocolWidget") : nullptr;
}

QInputDialog *question()
{
    return qobject_cast<QInputDialog *>(QApplication::activeModalWidget());
}

} // namespace

bool isShown()
{
    return window() != nullptr && window()->isVisible() && messages() != nullptr;
}

bool close()
{
    return window() == nullptr || window()->close();
}

bool press(Qt::Key key)
{
    if (messages() == nullptr)
        return false;
    QApplication::postEvent(messages(), new QKeyEvent(QEvent::KeyPress, key, Qt::ControlModifier));
    return true;
}

bool enter(const QString &text)
{
    if (!isAsking())
        return false;
    question()->setTextValue(text);
    question()->accept();
    return true;
}

bool isAsking()
{
    return question() != nullptr;
}

QString lineCount()
{
    if (window() != nullptr)
        for (const QAbstractButton *const button : window()->findChildren<QAbstractButton *>())
            if (button->text() == QLatin1String("Clear Log"))
                return button->toolTip();
    return {};
}

bool savePicture(const QString &path)
{
    return isShown() && window()->grab().save(path);
}

bool saveText(const QString &path)
{
    if (messages() == nullptr)
        return false;
    QKeyEvent copy(QEvent::KeyPress, Qt::Key_C, Qt::ControlModifier);
    QApplication::sendEvent(messages(), &copy);
    QFile file(path);
    return file.open(QIODevice::WriteOnly)
        && file.write(QApplication::clipboard()->text().toLatin1() + '\n') >= 0;
}

} // namespace SignalGenerator::DebugWindowUser
