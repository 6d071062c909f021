#pragma once

#include "platform/lock.h"

#include <atomic>

namespace Zorvan::analysis {

/// A lock for a few instructions at a time: one atomic operation to take it, a plain store to give it back.
/// Whoever finds it taken looks again less and less often, and sleeps if that does not help.
class ZORVAN_CAPABILITY("mutex") BriefLock
{
public:
    void lock() ZORVAN_ACQUIRE()
    {
        if (!tryLock())
            wait();
    }
    void unlock() ZORVAN_RELEASE() { m_isHeld.store(false, std::memory_order_release); }
    /// Whether anybody holds it.
    [[nodiscard]] bool isHeld() const { return m_isHeld.load(std::memory_order_acquire); }

private:
    bool tryLock() { return !m_isHeld.exchange(true, std::memory_order_acquire); }
    void wait();

    std::atomic<bool> m_isHeld{false};
};

} // namespace Zorvan::analysis
