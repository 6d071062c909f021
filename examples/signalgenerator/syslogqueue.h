#pragma once

#include "syslogformat.h"

#include <chrono>
#include <deque>
#include <mutex>

namespace SignalGenerator {

/// How much waits in memory, and for how long.
struct SyslogLimits
{
    std::size_t queuedLines = 50'000; ///< lines that the sender has not taken yet
    std::size_t queuedBytes = 16 * 1024 * 1024; ///< the same, what a line costs beside its text included
    /// Sent messages that are kept for the next connection. More than the receive buffer of a collector's
    /// socket (6 MiB at most, unless somebody has raised Linux' limit): what lies there is lost with it.
    std::size_t keptBytes = 8 * 1024 * 1024;
    std::chrono::milliseconds firstWait{100}; ///< before a connection is tried again; doubles each time
    std::chrono::milliseconds longestWait{5000};
    std::chrono::milliseconds end{5000}; ///< what the end may take to hand over the rest
};

/// Lines between the threads that print and the one that sends. Never full for long: while it is, new lines
/// are dropped and counted, until a quarter of it is free again. New ones, not old ones: the beginning of a
/// flood tells its reason, and what is lost is one gap, told by one message in the lines' place.
///
/// Any thread; the lock is held for moments only, never while something is sent.
class SyslogQueue
{
public:
    explicit SyslogQueue(const SyslogLimits &limits);

    /// Numbers the line and keeps it, or drops it. True: the sender sleeps and has to be woken.
    [[nodiscard]] bool put(std::string line, int displayFlags);
    /// The oldest records, \a most at most, appended to \a to. With none the sender counts as asleep.
    void take(std::deque<SyslogRecord> &to, std::size_t most);

    struct Counts
    {
        std::uint64_t lines = 0; ///< put in so far
        std::uint64_t dropped = 0;
        std::uint64_t gaps = 0; ///< messages about dropped lines
        std::uint64_t waiting = 0; ///< records still inside
    };
    [[nodiscard]] Counts counts() const;

private:
    [[nodiscard]] bool holds(std::size_t lines, std::size_t bytes) const;
    void drop(std::int64_t now);
    void endGap();

    const SyslogLimits m_limits;
    mutable std::mutex m_mutex; // guards what follows
    std::deque<SyslogRecord> m_records;
    std::size_t m_bytes = 0;
    SyslogRecord m_gap; ///< the lines that are being dropped; none: dropped is 0
    Counts m_counts;
    bool m_senderSleeps = false;
};

} // namespace SignalGenerator
