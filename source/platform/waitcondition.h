#pragma once

#include "platform/lock.h"

namespace Zorvan {

/// Lets one thread wait for another. A wake-up that comes before the wait is remembered.
///
/// Any thread. The object must outlive both calls: share it between the two threads.
class KLVWaitCondition
{
public:
    /// Waits for a wake-up and uses it up. False if \a limitMilliseconds passed first; negative: no limit.
    bool wait(int limitMilliseconds = -1);
    void wakeOne();

private:
    platform::Mutex m_lock;
    platform::WaitCondition m_changed;
    bool m_woken ZORVAN_GUARDED_BY(m_lock) = false;
};

} // namespace Zorvan
