#include "syslogformat.h"

#include <algorithm>
#include <cstdio>
#include <ctime>

namespace SignalGenerator {

namespace {

constexpr int local0 = 16; // facility
constexpr int warning = 4;
constexpr int notice = 5;
constexpr std::int64_t microsecondsPerSecond = 1'000'000;
constexpr std::string_view ellipsis = "...";
constexpr std::string_view byteOrderMark = "\xef\xbb\xbf"; // announces UTF-8

// 32473 is the number that RFC 5612 sets aside for examples: a maker puts its own here.
constexpr std::string_view structuredDataId = "[zorvan@32473";

namespace Shown { // bits of Debug::getDisplayFlags()
constexpr int module = 2;
constexpr int messageClass = 4;
constexpr int level = 8;
constexpr int time = 256;
constexpr int thread = 512;
} // namespace Shown

constexpr std::string_view timePattern = "00:00:00.000.000: ";

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

/// Blanks, and the '+' signs that make "+ CRITICAL +" stand out.
std::string_view withoutFrame(std::string_view text)
{
    const std::size_t begin = text.find_first_not_of(" +");
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(" +") - begin + 1);
}

/// Takes "<content" + ending off the front of \a rest; otherwise leaves it alone.
std::string_view takeBracketed(std::string_view &rest, std::string_view ending)
{
    const std::size_t end = rest.find_first_of("<>", 1);
    if (!beginsWith(rest, "<") || end == std::string_view::npos || !beginsWith(rest.substr(end), ending))
        return {};
    const std::string_view content = rest.substr(1, end - 1);
    rest.remove_prefix(end + ending.size());
    return withoutFrame(content);
}

/// The message has the time of day and the date; the line's own time would only repeat it.
void skipTime(std::string_view &rest)
{
    const auto fits = [](char pattern, char c) {
        return pattern == '0' ? c >= '0' && c <= '9' : c == pattern;
    };
    if (rest.size() >= timePattern.size()
        && std::equal(timePattern.begin(), timePattern.end(), rest.begin(), fits))
        rest.remove_prefix(timePattern.size());
}

std::string_view takeThread(std::string_view &rest)
{
    constexpr std::string_view ending = " thread) ";
    const std::size_t end = rest.find(ending);
    if (!beginsWith(rest, "(") || end == std::string_view::npos)
        return {};
    const std::string_view name = rest.substr(1, end - 1);
    rest.remove_prefix(end + ending.size());
    return withoutFrame(name);
}

void appendUtf8(std::string &to, unsigned char latin1)
{
    if (latin1 < 0x80) {
        to += static_cast<char>(latin1);
        return;
    }
    to += static_cast<char>(0xC0U | (latin1 >> 6U));
    to += static_cast<char>(0x80U | (latin1 & 0x3FU));
}

bool isControl(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x20 || byte == 0x7F;
}

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void appendParameter(std::string &to, const char *name, std::string_view value)
{
    if (value.empty())
        return;
    to.append(" ").append(name).append("=\"");
    for (const char c : value) {
        if (c == '"' || c == '\\' || c == ']')
            to += '\\';
        appendUtf8(to, static_cast<unsigned char>(isControl(c) ? '?' : c));
    }
    to += '"';
}

/// Length of the colour sequence (ESC [ numbers m) that \a text begins with; 0: it does not.
std::size_t colourLength(std::string_view text)
{
    if (!beginsWith(text, "\x1b["))
        return 0;
    const std::size_t end = text.find_first_not_of("0123456789;", 2);
    return end != std::string_view::npos && text[end] == 'm' ? end + 1 : 0;
}

/// Never longer than \a room.
void appendText(std::string &to, std::string_view text, std::size_t room)
{
    const std::size_t limit = to.size() + room;
    if (!isAscii(text))
        to += byteOrderMark;
    std::size_t uncut = to.size(); // where the text ends if it has to be cut
    for (std::size_t i = 0; i < text.size();) {
        if (const std::size_t colour = colourLength(text.substr(i))) {
            i += colour;
            continue;
        }
        appendUtf8(to, static_cast<unsigned char>(isControl(text[i]) ? '?' : text[i]));
        ++i;
        if (to.size() + ellipsis.size() <= limit)
            uncut = to.size();
        if (to.size() > limit) {
            to.resize(uncut);
            to += ellipsis;
            return;
        }
    }
}

void appendTime(std::string &to, std::int64_t microseconds)
{
    const std::time_t seconds = microseconds / microsecondsPerSecond;
    std::tm time{};
    gmtime_r(&seconds, &time);
    char text[64];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &time);
    std::snprintf(text + length, sizeof text - length, ".%06dZ",
                  static_cast<int>(microseconds % microsecondsPerSecond));
    to += text;
}

/// A name as the header wants it: visible ASCII without blanks, not too long, '-' for none.
std::string headerField(std::string_view name, std::size_t longest)
{
    std::string field(name.substr(0, longest));
    std::replace_if(
        field.begin(), field.end(), [](char c) { return c < '!' || c > '~'; }, '_');
    return field.empty() ? "-" : field;
}

} // namespace

LineFields fieldsOf(std::string_view line, int displayFlags)
{
    LineFields fields;
    std::string_view rest = line;
    if ((displayFlags & Shown::time) != 0)
        skipTime(rest);
    if ((displayFlags & Shown::thread) != 0)
        fields.thread = takeThread(rest);
    if ((displayFlags & Shown::module) != 0)
        fields.module = takeBracketed(rest, "> ");
    if ((displayFlags & Shown::messageClass) != 0)
        fields.messageClass = takeBracketed(rest, ">, ");
    if ((displayFlags & Shown::level) != 0)
        fields.level = takeBracketed(rest, ">: ");
    fields.text = rest;
    return fields;
}

int severityOf(std::string_view level)
{
    struct Severity
    {
        std::string_view level;
        int number;
    };
    constexpr Severity severities[] = {
        {"CRITICAL", 2}, {"Error", 3}, {"Warning", warning}, {"Info", 6}, {"Time Meas", 7}};
    for (const Severity &severity : severities) {
        if (severity.level == level)
            return severity.number;
    }
    return notice; // levels of a module's own, such as the panel's reports
}

SyslogFormat::SyslogFormat(std::string_view host, std::string_view application, std::string_view process)
    : m_origin(' ' + headerField(host, 255) + ' ' + headerField(application, 48) + ' '
               + headerField(process, 128) + ' ')
{}

std::string SyslogFormat::framed(const SyslogRecord &record) const
{
    const std::string text = message(record);
    return std::to_string(text.size()) + ' ' + text;
}

std::string SyslogFormat::message(const SyslogRecord &record) const
{
    const LineFields fields = fieldsOf(record.line, record.displayFlags);
    const int severity = record.dropped != 0 ? warning : severityOf(fields.level);
    std::string to = '<' + std::to_string(local0 * 8 + severity) + ">1 ";
    appendTime(to, record.microseconds);
    to.append(m_origin).append(record.dropped != 0 ? "DROPPED " : "LINE ").append(structuredDataId);
    appendParameter(to, "module", fields.module.substr(0, 256));
    appendParameter(to, "class", fields.messageClass.substr(0, 256));
    appendParameter(to, "level", fields.level.substr(0, 256));
    appendParameter(to, "thread", fields.thread.substr(0, 256));
    appendParameter(to, "seq", std::to_string(record.sequence));
    if (record.dropped == 0) {
        to += "] ";
        appendText(to, fields.text, longestMessage - to.size());
        return to;
    }
    const std::string count = std::to_string(record.dropped);
    appendParameter(to, "dropped", count);
    return to + "] " + count + " lines dropped: the queue to the collector was full";
}

} // namespace SignalGenerator
