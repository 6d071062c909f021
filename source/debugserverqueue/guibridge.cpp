#include "debugserverqueue/guibridge.h"

#include <QCoreApplication>

#include <atomic>

namespace Zorvan::guibridge {

namespace {

std::atomic<bool> s_eventLoopRunning{false};
std::atomic<bool> s_clientMode{false};
std::atomic<void *> s_guiThreadId{nullptr};
std::atomic<DebugWindow *> s_externalWindow{nullptr};

} // namespace

bool qtApplicationRuns()
{
    return QCoreApplication::instance() != nullptr && !QCoreApplication::startingUp()
        && !QCoreApplication::closingDown();
}

bool usingQt()
{
    return false;
}

bool queueExists()
{
    return false;
}

void requestRebuild() {}

void requestRedraw() {}

void setEventLoopRunning(bool running)
{
    s_eventLoopRunning.store(running);
}

bool eventLoopRunning()
{
    return s_eventLoopRunning.load();
}

void setGuiThreadId(void *id)
{
    s_guiThreadId.store(id);
}

void *guiThreadId()
{
    return s_guiThreadId.load();
}

void setExternalWindow(DebugWindow *window)
{
    s_externalWindow.store(window);
}

DebugWindow *externalWindow()
{
    return s_externalWindow.load();
}

void setClientMode()
{
    s_clientMode.store(true);
}

bool isClientMode()
{
    return s_clientMode.load();
}

void applicationGone()
{
    setEventLoopRunning(false);
    setGuiThreadId(nullptr);
}

} // namespace Zorvan::guibridge
