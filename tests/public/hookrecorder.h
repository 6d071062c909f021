#pragma once

#include <zorvan/debug.h>

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace Zorvan::test {

/// Gives other threads time until \a holds; a test that waits in vain runs into its time-out.
template <typename Condition>
void waitFor(Condition holds)
{
    while (!holds())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

/// A handler that remembers its calls. Safe to use from several threads.
class HookRecorder : public IHookInterface
{
public:
    /// Called for each call once it is noted.
    std::function<void(char *key, char *parameters)> onCall;

    void hookActivated(char *key, char *parameters) override
    {
        {
            const std::lock_guard guard(m_mutex);
            m_calls.push_back(std::string(key) + '=' + parameters);
            m_thread = std::this_thread::get_id();
        }
        if (onCall)
            onCall(key, parameters);
    }

    /// "key=parameters" of each call since the last question.
    std::vector<std::string> takeCalls()
    {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_calls, {});
    }
    void waitForCall() const
    {
        waitFor([this] {
            const std::lock_guard guard(m_mutex);
            return !m_calls.empty();
        });
    }
    /// Of the last call.
    [[nodiscard]] std::thread::id thread() const
    {
        const std::lock_guard guard(m_mutex);
        return m_thread;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<std::string> m_calls;
    std::thread::id m_thread;
};

} // namespace Zorvan::test
