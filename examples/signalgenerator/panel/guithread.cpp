#include "panel/guithread.h"

#include <QCoreApplication>
#include <QEvent>

#include <utility>

namespace SignalGenerator {

namespace {

// A number that nobody else uses: the library's own events begin at QEvent::User.
QEvent::Type jobsWait()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

} // namespace

void GuiThread::post(Job job)
{
    bool isFirst = false;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        isFirst = m_jobs.empty();
        m_jobs.push_back(std::move(job));
    }
    if (isFirst)
        QCoreApplication::postEvent(this, new QEvent(jobsWait()));
}

bool GuiThread::event(QEvent *event)
{
    if (event->type() != jobsWait())
        return QObject::event(event);
    std::deque<Job> jobs;
    {
        const std::lock_guard<std::mutex> guard(m_mutex);
        jobs.swap(m_jobs);
    }
    for (const Job &job : jobs)
        job();
    return true;
}

} // namespace SignalGenerator
