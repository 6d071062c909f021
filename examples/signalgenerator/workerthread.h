#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace SignalGenerator {

/// A named thread that runs jobs in the order in which they were posted. Any thread may post and wait.
class WorkerThread
{
public:
    using Job = std::function<void()>;

    /// \a name is kept as a pointer: pass a literal.
    explicit WorkerThread(const char *name);
    /// Runs the jobs that are still queued, then ends the thread.
    ~WorkerThread();
    WorkerThread(const WorkerThread &) = delete;
    WorkerThread &operator=(const WorkerThread &) = delete;

    void post(Job job);
    /// Waits until no job is queued or running. Not from a job: it would wait for itself.
    void waitUntilIdle();

private:
    void run(const char *name);

    std::mutex m_mutex; // guards the members below, except the thread
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<Job> m_jobs;
    bool m_busy = false;
    bool m_ending = false;
    std::thread m_thread; // last, so that it starts when the rest exists
};

} // namespace SignalGenerator
