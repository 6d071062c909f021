#include "roads.h"

#include <QCoreApplication>

namespace bench {

void ListRoad::handOver(const QString &line)
{
    const QMutexLocker guard(&m_mutex);
    if (m_lines.isEmpty())
        QCoreApplication::postEvent(this, new QEvent(eventType()));
    m_lines.append(line);
}

QEvent::Type ListRoad::eventType()
{
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

bool ListRoad::event(QEvent *event)
{
    if (event->type() != eventType())
        return QObject::event(event);
    QStringList batch;
    {
        const QMutexLocker guard(&m_mutex);
        batch.swap(m_lines);
    }
    m_stream.write(batch.join(QLatin1Char('\n')).toLatin1() + '\n');
    return true;
}

void CallRoad::handOver(const QString &line)
{
    QMetaObject::invokeMethod(
        this, [this, line] { m_stream.write(line.toLatin1() + '\n'); }, Qt::QueuedConnection);
}

EventCounter::EventCounter(QEvent::Type type)
    : m_type(type)
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool EventCounter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == m_type)
        m_count.fetch_add(1, std::memory_order_relaxed);
    return QObject::eventFilter(watched, event);
}

} // namespace bench
