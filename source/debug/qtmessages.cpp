#include "debug/qtmessages.h"

#include "debug/moduletable.h"
#include "debugserverqueue/guibridge.h"

#include <QMessageLogContext>

namespace Zorvan {

namespace {

/// The handler that ours replaced; put back when the library's static objects go.
class PreviousHandler
{
public:
    constexpr PreviousHandler() = default;
    ~PreviousHandler();
    PreviousHandler(const PreviousHandler &) = delete;
    PreviousHandler &operator=(const PreviousHandler &) = delete;

    void replaceBy(QtMessageHandler handler);

private:
    QtMessageHandler m_handler = nullptr;
};

struct MessageKind
{
    const char *prefix;
    int level;
};

MessageKind kindOf(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return {"++++ QDebug: ", 1};
    case QtWarningMsg:
        return {"++++ QWarning: ", 1};
    case QtCriticalMsg:
        return {"++++ QCritical: ", 0};
    case QtFatalMsg:
        return {"++++ QFatal: ", 0};
    case QtInfoMsg:
        return {"++++ QInfo: ", 3};
    }
    return {"++++ <unknown Qt Message Category>: ", 3};
}

void handleQtMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    const QString text = qFormatLogMessage(type, context, message);
    if (text.isNull())
        return;
    if (guibridge::queueExists())
        printQtMessage(type, text);
    else
        gyxLog("source/debug", 436, "%s\n", text.toLatin1().constData());
}

PreviousHandler s_previousHandler;

void PreviousHandler::replaceBy(QtMessageHandler handler)
{
    const QtMessageHandler replaced = qInstallMessageHandler(handler);
    if (replaced == handler)
        return; // a later start of the library
    m_handler = replaced;
}

PreviousHandler::~PreviousHandler()
{
    if (m_handler == nullptr)
        return;
    const QtMessageHandler replaced = qInstallMessageHandler(m_handler);
    if (replaced != handleQtMessage)
        qInstallMessageHandler(replaced); // somebody else's: not ours to remove
}

} // namespace

void installQtMessageHandler()
{
    s_previousHandler.replaceBy(handleQtMessage);
}

void printQtMessage(QtMsgType type, const QString &text)
{
    const MessageKind kind = kindOf(type);
    if (Debug::isActive(libraryModule, kind.level, 0))
        Debug::println(libraryModule, 0, QLatin1String(kind.prefix) + text, kind.level);
}

} // namespace Zorvan
