#include "platform/lock.h"

#include "platform/processor.h"

#include <algorithm>

namespace Zorvan::platform {
namespace {

// Its address names the thread. Unlike the system's thread numbers it stays the same in the child of a
// fork().
thread_local const char s_threadToken = 0;

// Counted, not timed: a clock on this path would cost more than the pauses, of 10 to 40 nanoseconds each.
constexpr int spinPauses = 2000; // longer than some file writes; then waking up is the smaller cost
constexpr int quietPauses = 100; // who waits for less than that gets the lock without being let go first
constexpr int courtesyPauses = 30; // enough for a spinner to notice that the lock is free

// The standard library adds the limit to the current time; its largest values would overflow there.
constexpr std::chrono::milliseconds longestWait = std::chrono::hours(24 * 365);

} // namespace

void RecursiveLock::lock()
{
    if (isMine()) {
        ++m_depth;
        return;
    }
    letWaitersGoFirst();
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

// A thread that prints line after line takes the lock again faster than a spinner sees it free.
void RecursiveLock::letWaitersGoFirst()
{
    for (int pause = 0; pause < courtesyPauses; ++pause) {
        if (m_spinners.load(std::memory_order_relaxed) == 0
            || m_owner.load(std::memory_order_relaxed) != nullptr)
            return;
        spinPause();
    }
}

// Spinners only read until the owner has gone, so that they do not slow down its last steps.
void RecursiveLock::acquireContended()
{
    bool acquired = false;
    for (int pause = 0; pause < spinPauses && !acquired; ++pause) {
        if (pause == quietPauses)
            m_spinners.fetch_add(1, std::memory_order_relaxed);
        if (m_owner.load(std::memory_order_relaxed) == nullptr)
            acquired = m_mutex.try_lock();
        if (!acquired)
            spinPause();
        else if (pause >= quietPauses)
            m_spinners.fetch_sub(1, std::memory_order_relaxed);
    }
    if (acquired)
        return;
    m_spinners.fetch_sub(1, std::memory_order_relaxed);
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
