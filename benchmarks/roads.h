#pragma once

/// Other ways of getting a finished line into the thread with the event loop, each with its own counting
/// stream at the end.

#include "guiloop.h"

#include <QEvent>
#include <QMutex>
#include <QObject>
#include <QStringList>

namespace bench {

/// A list behind a mutex, and an event whenever the first line comes into it.
class ListRoad final : public QObject
{
public:
    void handOver(const QString &line);

    [[nodiscard]] const CountingStream &stream() const { return m_stream; }
    static QEvent::Type eventType();

protected:
    bool event(QEvent *event) override;

private:
    QMutex m_mutex;
    QStringList m_lines;
    CountingStream m_stream;
};

/// A queued call for each line.
class CallRoad final : public QObject
{
public:
    void handOver(const QString &line);

private:
    CountingStream m_stream;
};

/// Counts, in the main thread, the events of one type on their way to whatever object.
class EventCounter final : public QObject
{
public:
    explicit EventCounter(QEvent::Type type);
    [[nodiscard]] long count() const { return m_count.load(); }
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const QEvent::Type m_type;
    std::atomic<long> m_count{0};
};

} // namespace bench
