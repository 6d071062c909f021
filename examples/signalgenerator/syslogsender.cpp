#include "syslogsender.h"

#include "threadnames.h"

#include <algorithm>
#include <utility>

namespace SignalGenerator {

namespace {

constexpr std::chrono::seconds connectTimeout{3};
constexpr std::size_t linesAtOnce = 256;

} // namespace

SyslogSender::SyslogSender(SyslogAddress address, const SyslogFormat &format, const SyslogLimits &limits)
    : m_address(std::move(address))
    , m_format(format)
    , m_limits(limits)
    , m_queue(limits)
    , m_outbox(limits.keptBytes)
    , m_wait(limits.firstWait)
    , m_thread(&SyslogSender::run, this)
{}

SyslogSender::~SyslogSender()
{
    close();
}

void SyslogSender::forward(std::string line, int displayFlags)
{
    if (m_queue.put(std::move(line), displayFlags))
        m_socket.wake();
}

SyslogReport SyslogSender::close()
{
    if (m_thread.joinable()) {
        m_deadline = Clock::now() + m_limits.end;
        m_socket.wake();
        m_thread.join();
    }
    const SyslogQueue::Counts counts = m_queue.counts();
    return {counts.lines,    counts.dropped,       counts.gaps,
            m_outbox.sent(), m_outbox.sentAgain(), counts.waiting + m_outbox.neverSent(),
            m_connections,   m_readToTheEnd};
}

void SyslogSender::run()
{
    setThreadName("syslog");
    while (!isOver()) {
        if (m_socket.isOpen())
            work();
        else if (connect())
            m_outbox.sendAllAgain();
        else
            waitBeforeRetry();
    }
}

/// One step on an open connection.
void SyslogSender::work()
{
    const bool ending = isEnding(); // asked first: then fetch() sees all that was put in before the end
    fetch();
    if (m_outbox.hasUnsent()) {
        if (!m_outbox.sendSome(m_socket) && m_socket.isOpen())
            m_socket.wait(SyslogSocket::For::Room, m_deadline);
    } else if (ending) {
        m_readToTheEnd = m_socket.finish(m_deadline);
    } else {
        m_socket.wait(SyslogSocket::For::Lines, m_deadline);
    }
    if (m_socket.isOpen() || isOver())
        return;
    if (Clock::now() - m_openSince > m_limits.longestWait)
        m_wait = m_limits.firstWait; // it was of use
    waitBeforeRetry();
}

bool SyslogSender::connect()
{
    if (!m_socket.open(m_address, std::min(Clock::now() + connectTimeout, m_deadline.load())))
        return false;
    ++m_connections;
    m_openSince = Clock::now();
    return true;
}

void SyslogSender::waitBeforeRetry()
{
    const Clock::time_point begin = Clock::now();
    const auto end = [&] {
        return std::min(begin + (isEnding() ? m_limits.firstWait : m_wait), m_deadline.load());
    };
    while (Clock::now() < end())
        m_socket.wait(SyslogSocket::For::Lines, end());
    m_wait = std::min(2 * m_wait, m_limits.longestWait);
}

/// More lines for the outbox when it has nothing left to send.
void SyslogSender::fetch()
{
    if (m_outbox.hasUnsent())
        return;
    std::deque<SyslogRecord> records;
    m_queue.take(records, linesAtOnce);
    for (const SyslogRecord &record : records)
        m_outbox.add(m_format.framed(record));
}

} // namespace SignalGenerator
