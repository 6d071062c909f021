#include "debugserverqueue/builtinhooks.h"

#include "debugserverqueue/boxcontent.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/hookthread.h"
#include "debugserverqueue/librarynotice.h"
#include "host/hosthandlers.h"

#include <QPointer>
#include <QTextEdit>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace Zorvan {

namespace {

using namespace std::chrono_literals;
using boxcodes::defaultFlag;

constexpr int warningIcon = 2;
constexpr int criticalIcon = 3;
constexpr int maxCount = 64; ///< clients far away choose the counts
constexpr auto loopBoxTime = 1s;

/// A count from a parameter text; 0 if it is no number.
int countFrom(const QString &text)
{
    const int count = text.toInt();
    if (count > maxCount)
        libraryNotice(
            QStringLiteral("++++ %1 is too much for a test hook, %2 are used").arg(count).arg(maxCount));
    return std::min(count, maxCount);
}

int askBox(const QString &caption, const QString &text, int button0, int button1)
{
    return Debug::debugMessageBox(caption, text, true, 0, button0, button1, 0);
}

/// The window whose text the test box shows. Only the GUI thread touches it.
QPointer<QTextEdit> &testEditor()
{
    static QPointer<QTextEdit> editor;
    return editor;
}

QString textOfTestEditor()
{
    QPointer<QTextEdit> &editor = testEditor();
    if (!editor) {
        editor = new QTextEdit;
        editor->setWindowTitle(QStringLiteral("debugMessageBox test"));
        editor->setAttribute(Qt::WA_QuitOnClose, false); // perhaps the only window of the host
        editor->setFont(QFont(QStringLiteral("Courier"), 10));
        editor->resize(800, 600);
    }
    editor->show();
    const QString text = editor->toPlainText();
    return text.isEmpty() ? QStringLiteral("type in HTML text in edit window\n\n"
                                           "use 'nonmodal' as parameter for box without buttons")
                          : text;
}

void testMessage(const QString &parameters)
{
    if (!guibridge::canShowWindows() || !guibridge::isGuiThread()) {
        libraryNotice(QStringLiteral("++++ the test editor can only be shown by the GUI thread!"));
        return;
    }
    const bool modal = parameters.toLower() != QLatin1String("nonmodal");
    Debug::debugMessageBox(QStringLiteral("debugMessageBox test"), textOfTestEditor(), modal,
                           modal ? criticalIcon : warningIcon, 0, 0, 0);
}

void chooseNewUi(const QString &parameters)
{
    host::writeString(QStringLiteral("newUserInterface"), QString::number(parameters.toInt()));
    askBox(QStringLiteral("restart message"),
           QStringLiteral("Your changes will take effect after new firmware startup"), 0, 0);
}

/// Shows boxes one behind the other, until the library stops.
void loopBoxes(int count)
{
    for (int i = 0; i < count && !QThread::currentThread()->isInterruptionRequested(); ++i) {
        const int box = Debug::debugMessageBox(QStringLiteral("test"), QStringLiteral("%1. box...").arg(i),
                                               false, 0, boxcodes::ok, 0, 0);
        std::this_thread::sleep_for(loopBoxTime);
        Debug::removeMessageBox(box);
    }
}

void testMessageBox(const QString &parameters)
{
    const QString caption = QStringLiteral("test");
    const QString wish = parameters.toLower();
    if (wish.isEmpty() || wish == QLatin1String("ok"))
        askBox(caption, QStringLiteral("testbox"), boxcodes::ok | defaultFlag, boxcodes::cancel);
    else if (wish == QLatin1String("cancel"))
        askBox(caption, QStringLiteral("testbox"), boxcodes::ok, boxcodes::cancel | defaultFlag);
    else if (askBox(caption, QStringLiteral("looping %1 times ?").arg(wish), boxcodes::ok | defaultFlag,
                    boxcodes::cancel)
             == boxcodes::ok)
        loopBoxes(countFrom(wish));
}

void allowRemote(const QString &parameters)
{
    Debug::setClientsAllowed(parameters.toInt() == 1);
}

void testAssert(const QString &parameters)
{
    if (parameters.isEmpty()) {
        gyxAssert(QString(), QStringLiteral("testing assertion: enter number of concurrent threads!"),
                  "source/debugserverqueue", 1284);
        return;
    }
    const int count = countFrom(parameters);
    for (int i = 0; i < count; ++i)
        startHookWorker(std::make_shared<assertThread>(QStringLiteral("concurrent thread no %1").arg(i)));
}

struct BuiltinHook
{
    const char *key;
    void (*run)(const QString &parameters);
};

constexpr BuiltinHook builtinHooks[] = {
    {"DebugServer_testMessage", testMessage},   {"DebugServer_newUI", chooseNewUi},
    {"DebugServer_testMsgBox", testMessageBox}, {"DebugServer_allowRemote", allowRemote},
    {"DebugServer_testAssert", testAssert},
};

} // namespace

void runBuiltinHook(const char *key, const char *parameters)
{
    for (const BuiltinHook &hook : builtinHooks) {
        if (std::strcmp(key, hook.key) == 0)
            hook.run(QString::fromLatin1(parameters));
    }
}

void closeTestEditor()
{
    delete testEditor().data();
}

} // namespace Zorvan
