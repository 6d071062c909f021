#include "debugserverqueue/afterlines.h"

#include "debugserverqueue/guibridge.h"
#include "host/tablestate.h"
#include "platform/clock.h"

#include <QCoreApplication>

#include <atomic>
#include <utility>

namespace Zorvan::afterlines {

namespace {

constexpr std::int32_t mostWaiting = 200;
constexpr std::chrono::milliseconds delayOfLine{10};

std::atomic<void *> s_loopThread{nullptr};

/// What the calling thread owes.
struct Due
{
    bool wakeUp = false;
    int delays = 0;
    bool events = false;
};

thread_local Due t_due;
thread_local bool t_isPaying = false; // lines printed meanwhile are free

} // namespace

void setLoopThread(void *id)
{
    s_loopThread.store(id, std::memory_order_relaxed);
}

void noteBatch()
{
    t_due.wakeUp = true;
}

void noteLine(std::int32_t waiting)
{
    if (waiting <= mostWaiting || t_isPaying || !guibridge::eventLoopRunning())
        return; // without a loop nobody would shorten the wait
    void *const loopThread = s_loopThread.load(std::memory_order_relaxed);
    if (loopThread == nullptr)
        return;
    if (loopThread != platform::currentThreadId())
        ++t_due.delays;
    else if (guibridge::isClientMode())
        t_due.events = true;
}

bool isDue()
{
    return t_due.wakeUp || t_due.delays > 0 || t_due.events;
}

void pay()
{
    if (TableState::lock().isMine())
        return;
    const Due due = std::exchange(t_due, Due());
    if (due.wakeUp)
        guibridge::announceLines();
    if (t_isPaying)
        return;
    t_isPaying = true;
    for (int delay = 0; delay < due.delays && guibridge::waitingLines() > mostWaiting; ++delay)
        platform::sleepFor(delayOfLine);
    if (due.events) {
        QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
        guibridge::forgetWaitingLines();
    }
    t_isPaying = false;
}

} // namespace Zorvan::afterlines
