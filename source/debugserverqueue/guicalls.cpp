// Members of the facade that lead into the GUI thread without an answer.

#include "debugserverqueue/events.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/remoteaccess.h"

#include <atomic>

namespace Zorvan {

namespace {

std::atomic<bool> s_serverMode{false};

} // namespace

void Debug::eventLoopStarted()
{
    guibridge::setEventLoopRunning(true);
}

void Debug::eventLoopFinished()
{
    guibridge::setEventLoopRunning(false);
}

void Debug::setGuiThreadId(void *id)
{
    guibridge::setGuiThreadId(id);
}

void Debug::setWindowTitle(const QString &title)
{
    guibridge::setWindowTitle(title);
}

void Debug::showDebugWindow()
{
    guibridge::post(std::make_unique<QEvent>(eventType(QueueEvent::ShowWindow)));
}

void Debug::queueRedraw()
{
    guibridge::requestRedraw();
}

void Debug::queueRebuild()
{
    guibridge::requestRebuild();
}

void Debug::setClientsAllowed(bool allowed)
{
    guibridge::post(std::make_unique<ServerEventMsg>(allowed));
}

bool Debug::clientsAllowed()
{
    return guibridge::queueExists() && RemoteAccess::isAllowed();
}

void Debug::setServerMode(bool on)
{
    s_serverMode.store(on);
    guibridge::announceModes();
}

bool Debug::isServer()
{
    return s_serverMode.load();
}

void Debug::setClientMode()
{
    guibridge::setClientMode();
}

bool Debug::isClient()
{
    return guibridge::isClientMode();
}

} // namespace Zorvan
