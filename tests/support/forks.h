#pragma once

#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#include <atomic>
#include <mutex>
#include <shared_mutex>
#include <thread>
#endif

namespace Zorvan::test {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)

/// The sanitizers' allocators do not survive a fork() amid another thread's allocation: the child may wait
/// for ever for a lock whose owner is not there. With them, the other threads stand between two turns
/// meanwhile. One thread forks.
class ForksAmidWork
{
public:
    template <typename Work>
    void turn(Work work)
    {
        while (m_isForking) // a shared lock that is always wanted would never be free for the other one
            std::this_thread::yield();
        const std::shared_lock lock(m_mutex);
        work();
    }
    pid_t fork()
    {
        m_isForking = true;
        const std::unique_lock lock(m_mutex);
        const pid_t child = ::fork();
        m_isForking = false;
        return child;
    }

private:
    std::atomic<bool> m_isForking{false};
    std::shared_mutex m_mutex;
};

#else

/// Lets a thread fork while others work in turns, wherever they are at that moment.
class ForksAmidWork
{
public:
    template <typename Work>
    void turn(Work work)
    {
        work();
    }
    pid_t fork() { return ::fork(); }
};

#endif

} // namespace Zorvan::test
