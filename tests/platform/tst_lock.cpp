#include "platform/lock.h"

#include <gtest/gtest.h>
#include <vector>

namespace Zorvan::platform::tests {
namespace {

using namespace std::chrono_literals;

/// A number that two threads spoil if the lock lets both in.
struct Counter
{
    RecursiveLock lock;
    int value ZORVAN_GUARDED_BY(lock) = 0;
};

TEST(RecursiveLock, letsOneThreadInAtATime)
{
    constexpr int rounds = 20000;
    Counter counter;
    std::vector<Thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&counter] {
            for (int round = 0; round < rounds; ++round) {
                const Locked outer(counter.lock);
                ++counter.value;
            }
        });
    threads.clear();
    const Locked guard(counter.lock);
    EXPECT_EQ(counter.value, 4 * rounds);
}

// The analysis of the compiler knows no locks that are taken twice.
void lockTwice(RecursiveLock &lock) ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    lock.lock();
    lock.lock();
    EXPECT_EQ(lock.depth(), 2);
}

int unlockOnce(RecursiveLock &lock) ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    lock.unlock();
    return lock.depth();
}

TEST(RecursiveLock, belongsToItsThreadUntilTheLastUnlock)
{
    RecursiveLock lock;
    lockTwice(lock);
    std::atomic<bool> entered = false;
    Thread other([&] {
        EXPECT_EQ(lock.depth(), 0);
        const Locked guard(lock);
        entered = true;
    });
    EXPECT_EQ(unlockOnce(lock), 1);
    std::this_thread::sleep_for(5ms); // far beyond the spinning: the other thread sleeps in the lock
    EXPECT_FALSE(entered);
    EXPECT_EQ(unlockOnce(lock), 0);
    other.join();
    EXPECT_TRUE(entered);
}

/// One value handed from thread to thread.
class Mailbox
{
public:
    void put(int value) ZORVAN_EXCLUDES(m_mutex)
    {
        const Locked guard(m_mutex);
        while (m_value != 0)
            m_changed.wait(m_mutex);
        m_value = value;
        m_changed.wakeAll();
    }
    int take() ZORVAN_EXCLUDES(m_mutex)
    {
        const Locked guard(m_mutex);
        while (m_value == 0)
            m_changed.waitFor(m_mutex, std::chrono::milliseconds::max());
        m_changed.wakeAll();
        return std::exchange(m_value, 0);
    }
    bool waitInVain(std::chrono::milliseconds limit) ZORVAN_EXCLUDES(m_mutex)
    {
        const Locked guard(m_mutex);
        const bool woken = m_changed.waitFor(m_mutex, limit);
        bool isFree = false;
        Thread([&] {
            if (m_mutex.tryLock()) {
                isFree = true;
                m_mutex.unlock();
            }
        }).join();
        return !woken && !isFree;
    }

private:
    Mutex m_mutex;
    WaitCondition m_changed;
    int m_value ZORVAN_GUARDED_BY(m_mutex) = 0;
};

TEST(WaitCondition, handsValuesOverInOrder)
{
    constexpr int last = 2000;
    Mailbox mailbox;
    Thread producer([&] {
        for (int value = 1; value <= last; ++value)
            mailbox.put(value);
    });
    for (int value = 1; value <= last; ++value)
        ASSERT_EQ(mailbox.take(), value);
}

TEST(WaitCondition, limitedWaitEndsWithTheMutexHeld)
{
    Mailbox mailbox;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(mailbox.waitInVain(10ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 10ms);
}

} // namespace
} // namespace Zorvan::platform::tests
