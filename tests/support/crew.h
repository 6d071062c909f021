#pragma once

#include <atomic>
#include <thread>
#include <vector>

namespace Zorvan::test {

/// Threads that run work(0), work(1), ... beside their maker, which waits for them at the end of the scope.
class Crew
{
public:
    template <typename Work>
    Crew(int count, Work work)
        : m_busy(count)
    {
        m_threads.reserve(static_cast<std::size_t>(count)); // the list does not move while they are under way
        for (int number = 0; number < count; ++number) {
            m_threads.emplace_back([this, work, number]() mutable {
                work(number);
                --m_busy;
            });
        }
    }
    ~Crew() { join(); }
    Crew(const Crew &) = delete;
    Crew &operator=(const Crew &) = delete;

    [[nodiscard]] bool isBusy() const { return m_busy > 0; }
    void join()
    {
        for (std::thread &thread : m_threads)
            thread.join();
        m_threads.clear();
    }

private:
    std::atomic<int> m_busy;
    std::vector<std::thread> m_threads;
};

} // namespace Zorvan::test
