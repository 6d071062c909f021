#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace SignalGenerator {

/// A line on its way to the collector, or the news that some were dropped.
struct SyslogRecord
{
    std::int64_t microseconds = 0; ///< since 1970, UTC
    std::uint64_t sequence = 0; ///< number of the line, from 1 on; with dropped: that of the first of them
    std::uint64_t dropped = 0; ///< not 0: that many lines stay away, and there is no text
    int displayFlags = 0; ///< which headers the line begins with, see Debug::getDisplayFlags()
    std::string line; ///< Latin-1
};

/// A debug line taken apart. What the header does not show, or not in the form that all modules of this
/// instrument use ("<Module> <class>, <level>: "), is empty; what is no header is text.
struct LineFields
{
    std::string_view thread;
    std::string_view module;
    std::string_view messageClass;
    std::string_view level;
    std::string_view text;
};

[[nodiscard]] LineFields fieldsOf(std::string_view line, int displayFlags);

/// The severity that a level of the instrument has for syslog: 2 (critical) to 7 (debug).
[[nodiscard]] int severityOf(std::string_view level);

/// Makes messages of the syslog protocol (RFC 5424) for one instrument. Any thread.
class SyslogFormat
{
public:
    /// All that collectors take without being told to: RFC 5425 wants 8,192 bytes, but rsyslog cuts at 8,096.
    static constexpr std::size_t longestMessage = 8096;

    /// What the protocol does not allow in these names, blanks for instance, becomes '_'.
    SyslogFormat(std::string_view host, std::string_view application, std::string_view process);

    /// The message with its length before it, as TCP wants it (RFC 6587, octet counting). Colours are left
    /// out of the text, control characters become '?'; one that is too long is cut and ends in "...".
    [[nodiscard]] std::string framed(const SyslogRecord &record) const;

private:
    [[nodiscard]] std::string message(const SyslogRecord &record) const;

    std::string m_origin; ///< " HOSTNAME APP-NAME PROCID "
};

} // namespace SignalGenerator
