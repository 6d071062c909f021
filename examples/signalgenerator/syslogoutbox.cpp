#include "syslogoutbox.h"

#include <algorithm>
#include <array>
#include <utility>

namespace SignalGenerator {

SyslogOutbox::SyslogOutbox(std::size_t keptBytes)
    : m_keptBytes(keptBytes)
{}

void SyslogOutbox::add(std::string message)
{
    m_messages.push_back(std::move(message));
}

bool SyslogOutbox::sendSome(SyslogSocket &socket)
{
    std::array<iovec, 64> pieces{};
    const std::size_t count = std::min(pieces.size(), m_messages.size() - m_next);
    for (std::size_t i = 0; i < count; ++i) {
        std::string &message = m_messages[m_next + i];
        const std::size_t begin = i == 0 ? m_offset : 0;
        pieces[i] = {message.data() + begin, message.size() - begin};
    }
    const std::size_t bytes = socket.send(pieces.data(), count);
    countSent(bytes);
    limitKept();
    return bytes > 0;
}

void SyslogOutbox::sendAllAgain()
{
    m_next = 0;
    m_offset = 0;
    m_sentBytes = 0;
}

void SyslogOutbox::countSent(std::size_t bytes)
{
    m_offset += bytes;
    while (hasUnsent() && m_offset >= m_messages[m_next].size()) {
        m_offset -= m_messages[m_next].size();
        m_sentBytes += m_messages[m_next].size();
        ++m_next;
        if (m_next <= m_oldCount) {
            ++m_sentAgain;
            continue;
        }
        m_oldCount = m_next;
        ++m_sent;
    }
}

void SyslogOutbox::limitKept()
{
    while (m_sentBytes > m_keptBytes) {
        m_sentBytes -= m_messages.front().size();
        m_messages.pop_front();
        --m_next;
        --m_oldCount;
    }
}

} // namespace SignalGenerator
