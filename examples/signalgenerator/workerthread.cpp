#include "workerthread.h"

#include "threadnames.h"

#include <utility>

namespace SignalGenerator {

WorkerThread::WorkerThread(const char *name)
    : m_thread(&WorkerThread::run, this, name)
{}

WorkerThread::~WorkerThread()
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_ending = true;
    }
    m_wake.notify_one();
    m_thread.join();
}

void WorkerThread::post(Job job)
{
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_wake.notify_one();
}

void WorkerThread::waitUntilIdle()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_idle.wait(lock, [this] { return m_jobs.empty() && !m_busy; });
}

void WorkerThread::run(const char *name)
{
    setThreadName(name);
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
        if (m_jobs.empty())
            return;
        const Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_busy = true;
        lock.unlock();
        job();
        lock.lock();
        m_busy = false;
        if (m_jobs.empty())
            m_idle.notify_all();
    }
}

} // namespace SignalGenerator
