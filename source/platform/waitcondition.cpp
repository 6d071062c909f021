#include "platform/waitcondition.h"

namespace Zorvan {

bool KLVWaitCondition::wait(int limitMilliseconds)
{
    using namespace std::chrono;
    const auto end = steady_clock::now() + milliseconds(limitMilliseconds);
    const platform::Locked guard(m_lock);
    while (!m_woken) {
        if (limitMilliseconds < 0) {
            m_changed.wait(m_lock);
            continue;
        }
        const auto rest = ceil<milliseconds>(end - steady_clock::now());
        if (rest <= milliseconds::zero())
            return false;
        m_changed.waitFor(m_lock, rest);
    }
    m_woken = false;
    return true;
}

void KLVWaitCondition::wakeOne()
{
    const platform::Locked guard(m_lock);
    m_woken = true;
    m_changed.wakeOne();
}

} // namespace Zorvan
