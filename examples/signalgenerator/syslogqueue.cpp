#include "syslogqueue.h"

#include <algorithm>
#include <utility>

namespace SignalGenerator {

namespace {

std::int64_t microsecondsNow()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
}

std::size_t costOf(const SyslogRecord &record)
{
    return sizeof record + record.line.size();
}

} // namespace

SyslogQueue::SyslogQueue(const SyslogLimits &limits)
    : m_limits(limits)
{}

bool SyslogQueue::put(std::string line, int displayFlags)
{
    SyslogRecord record{microsecondsNow(), 0, 0, displayFlags, std::move(line)};
    const std::size_t cost = costOf(record);
    const std::lock_guard<std::mutex> guard(m_mutex);
    record.sequence = ++m_counts.lines;
    if (m_gap.dropped != 0 || !holds(1, cost)) {
        drop(record.microseconds);
    } else {
        m_bytes += cost;
        m_records.push_back(std::move(record));
    }
    return std::exchange(m_senderSleeps, false);
}

void SyslogQueue::take(std::deque<SyslogRecord> &to, std::size_t most)
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    if (m_gap.dropped != 0 && holds(m_limits.queuedLines / 4, m_limits.queuedBytes / 4))
        endGap();
    for (std::size_t count = std::min(most, m_records.size()); count > 0; --count) {
        m_bytes -= costOf(m_records.front());
        to.push_back(std::move(m_records.front()));
        m_records.pop_front();
    }
    m_senderSleeps = to.empty();
}

SyslogQueue::Counts SyslogQueue::counts() const
{
    const std::lock_guard<std::mutex> guard(m_mutex);
    Counts counts = m_counts;
    counts.waiting = m_records.size();
    return counts;
}

/// Whether there is room for more.
bool SyslogQueue::holds(std::size_t lines, std::size_t bytes) const
{
    return m_records.size() + lines <= m_limits.queuedLines && m_bytes + bytes <= m_limits.queuedBytes;
}

void SyslogQueue::drop(std::int64_t now)
{
    if (m_gap.dropped == 0)
        m_gap = {now, m_counts.lines, 0, 0, {}};
    ++m_gap.dropped;
    ++m_counts.dropped;
}

void SyslogQueue::endGap()
{
    m_bytes += costOf(m_gap);
    m_records.push_back(std::exchange(m_gap, SyslogRecord()));
    ++m_counts.gaps;
}

} // namespace SignalGenerator
