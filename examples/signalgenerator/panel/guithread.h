#pragma once

#include <QObject>

#include <deque>
#include <functional>
#include <mutex>

namespace SignalGenerator {

/// Runs jobs in the GUI thread, in the order in which they were posted: the counterpart of WorkerThread.
///
/// Make it in the GUI thread. Any thread may post, as long as the object lives: an object that owns both this
/// and a WorkerThread declares the thread behind it. Jobs that wait at the end are dropped.
class GuiThread : public QObject
{
public:
    using Job = std::function<void()>;

    /// Returns at once.
    void post(Job job);

protected:
    bool event(QEvent *event) override;

private:
    // A lock of the standard library hands the jobs over, not the event: race checkers can follow it.
    std::mutex m_mutex; // guards m_jobs
    std::deque<Job> m_jobs;
};

} // namespace SignalGenerator
