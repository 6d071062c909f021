#pragma once

#include "syslogoutbox.h"
#include "syslogqueue.h"

#include <atomic>
#include <thread>

namespace SignalGenerator {

/// What became of the lines. lines + gaps == sent + dropped + unsent.
struct SyslogReport
{
    std::uint64_t lines = 0; ///< came through the line tap
    std::uint64_t dropped = 0; ///< of them, because the queue was full
    std::uint64_t gaps = 0; ///< messages that tell the collector of dropped lines
    std::uint64_t sent = 0; ///< handed to the system at least once, messages about gaps included
    std::uint64_t sentAgain = 0; ///< on later connections
    std::uint64_t unsent = 0; ///< no collector took them before the end
    std::uint64_t connections = 0;
    bool readToTheEnd = false; ///< the collector has read all that was sent on the last connection
};

/// Forwards lines to a syslog collector over TCP, in a thread of its own.
///
/// forward() takes the lock of a queue for a moment and never waits for the network: what does not fit is
/// dropped and counted. While no collector answers, lines wait in the queue. TCP does not tell which lines a
/// collector had read when it went away; so the newest of those sent are kept, and go out again on the next
/// connection. Lines may arrive twice then, with the same number; more than SyslogLimits::keptBytes of lines
/// that a collector took and lost are gone, and their numbers are missing.
class SyslogSender
{
public:
    SyslogSender(SyslogAddress address, const SyslogFormat &format, const SyslogLimits &limits = {});
    ~SyslogSender();
    SyslogSender(const SyslogSender &) = delete;
    SyslogSender &operator=(const SyslogSender &) = delete;

    /// Any thread. \a line is Latin-1; \a displayFlags as in SyslogRecord.
    void forward(std::string line, int displayFlags);
    /// Hands over what waits, within SyslogLimits::end, and ends the thread. Lines that are forwarded later
    /// are not in the report.
    SyslogReport close();

private:
    using Clock = SyslogSocket::Clock;

    void run();
    void work();
    [[nodiscard]] bool connect();
    void waitBeforeRetry();
    void fetch();
    [[nodiscard]] bool isEnding() const { return m_deadline.load() != Clock::time_point::max(); }
    [[nodiscard]] bool isOver() const { return m_readToTheEnd || Clock::now() >= m_deadline.load(); }

    const SyslogAddress m_address;
    const SyslogFormat m_format;
    const SyslogLimits m_limits;
    SyslogQueue m_queue;
    SyslogSocket m_socket;
    std::atomic<Clock::time_point> m_deadline{Clock::time_point::max()}; // of the end

    // the thread's own, close() reads them when it has ended
    SyslogOutbox m_outbox;
    std::chrono::milliseconds m_wait;
    Clock::time_point m_openSince;
    std::uint64_t m_connections = 0;
    bool m_readToTheEnd = false;

    std::thread m_thread; // last, so that it starts when the rest exists
};

} // namespace SignalGenerator
