#include "platform/lock.h"

#include "platform/processor_p.h"

#include <algorithm>

namespace Zorvan::platform {
namespace {

// Its address names the thread. Unlike the system's thread numbers it stays the same in the child of a
// fork().
thread_local const char s_threadToken = 0;

// About 10 to 20 microseconds: longer than one file write, shorter than being put to sleep and woken again.
// Counted, not timed: a clock on this path would cost more than the pauses.
constexpr int spinPauses = 400;

// The standard library adds the limit to the current time; its largest values would overflow there.
constexpr std::chrono::milliseconds longestWait = std::chrono::hours(24 * 365);

} // namespace

void RecursiveLock::lock()
{
    if (isMine()) {
        ++m_depth;
        return;
    }
    if (!m_mutex.try_lock())
        acquireContended();
    takeOver(this);
    m_owner.store(&s_threadToken, std::memory_order_relaxed);
    m_depth = 1;
}

void RecursiveLock::unlock()
{
    if (--m_depth > 0)
        return;
    m_owner.store(nullptr, std::memory_order_relaxed);
    handOver(this);
    m_mutex.unlock();
}

bool RecursiveLock::isMine() const
{
    // Relaxed is enough: only this thread ever stores its own token, and it sees its own stores in order.
    return m_owner.load(std::memory_order_relaxed) == &s_threadToken;
}

// Spinners only read until the owner has gone, so that they do not slow down its last steps.
void RecursiveLock::acquireContended()
{
    for (int pause = 0; pause < spinPauses; ++pause) {
        if (m_owner.load(std::memory_order_relaxed) == nullptr && m_mutex.try_lock())
            return;
        spinPause();
    }
    m_mutex.lock();
}

void WaitCondition::wait(Mutex &mutex)
{
    std::unique_lock<std::mutex> held(mutex.m_mutex, std::adopt_lock);
    handOver(&mutex);
    m_condition.wait(held);
    takeOver(&mutex);
    held.release();
}

bool WaitCondition::waitFor(Mutex &mutex, std::chrono::milliseconds limit)
{
    std::unique_lock<std::mutex> held(mutex.m_mutex, std::adopt_lock);
    handOver(&mutex);
    const std::cv_status status = m_condition.wait_for(held, std::min(limit, longestWait));
    takeOver(&mutex);
    held.release();
    return status == std::cv_status::no_timeout;
}

} // namespace Zorvan::platform
