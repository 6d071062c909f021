#include "lowlevelfunctions/tracehistory.h"

#include "lowlevelfunctions/argumentlessformat.h"
#include "lowlevelfunctions/plaintext.h"
#include "platform/clock.h"
#include "platform/errornumber.h"
#include "platform/files.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace Zorvan {

namespace {

constexpr const char *crashLogPath = "/var/appdata/crashlog.txt";
constexpr const char *heading =
    "\nnow trying to dump history of last execution trace points (this may not work)...\n";
constexpr std::size_t longestFormat = 1024;
constexpr std::size_t historyLimit = 10240;
constexpr const char *dateFormat = "%Y/%m/%d-%H:%M:%S";
constexpr int lockAttempts = 1000; // a millisecond apart

} // namespace

/// One line of the history, made on the stack:
/// "000004d2 - 2026/01/31-23:59:59.999 - message", then the source position and the line end.
///
/// By hand, except for the message: a general formatter would take three times as long over the rest.
class TraceLine
{
public:
    TraceLine()
    {
        appendThread();
        append(" - ");
        m_stampPlace = m_length;
        append("0000/00/00-00:00:00.000 - ");
    }

    void appendMessage(const char *format, va_list *arguments);
    void appendFormatted(const char *format, va_list *arguments);
    void appendPosition(const char *file, int line);
    /// Ends a line that has no end anywhere, not even within its message.
    void end();
    /// Puts in the time.
    void stamp(std::string_view date, int milliseconds);

    [[nodiscard]] std::string_view text() const { return {m_text, m_length}; }

private:
    void append(std::string_view piece)
    {
        const std::size_t length = std::min(piece.size(), limit - m_length);
        std::memcpy(m_text + m_length, piece.data(), length);
        m_length += length;
    }
    void appendThread();

    static constexpr std::size_t limit = 4094; // characters; a line that is cut there gets an end behind them

    std::size_t m_length = 0;
    std::size_t m_stampPlace = 0;
    char m_text[limit + 2];
};

/// The number of the thread, hexadecimal, with eight digits at least.
void TraceLine::appendThread()
{
    constexpr std::size_t leastDigits = 8;
    char digits[16];
    std::uint64_t rest = platform::kernelThreadId();
    std::size_t first = sizeof digits;
    while (rest != 0 || first > sizeof digits - leastDigits) {
        digits[--first] = "0123456789abcdef"[rest % 16];
        rest /= 16;
    }
    append({digits + first, sizeof digits - first});
}

void TraceLine::appendMessage(const char *format, va_list *arguments)
{
    const std::size_t begin = m_length;
    appendFormatted(format, arguments);
    blankNullCharacters(m_text + begin, m_length - begin);
}

/// A message that cannot be formatted is shown as its format.
void TraceLine::appendFormatted(const char *format, va_list *arguments)
{
    const std::size_t room = limit - m_length;
    if (arguments == nullptr) {
        m_length += formatWithoutArguments(m_text + m_length, room, format);
        return;
    }
    va_list copy;
    va_copy(copy, *arguments);
    const int length = std::vsnprintf(m_text + m_length, room + 1, format, copy);
    va_end(copy);
    if (length < 0)
        append(format);
    else
        m_length += std::min(static_cast<std::size_t>(length), room);
}

void TraceLine::appendPosition(const char *file, int line)
{
    char number[16];
    char *const end = std::to_chars(number, number + sizeof number, line).ptr;
    append("                                      (file ");
    append({file, strnlen(file, limit)});
    append(",line ");
    append({number, static_cast<std::size_t>(end - number)});
    append(")\n");
}

void TraceLine::end()
{
    if (m_text[m_length - 1] != '\n' && std::memchr(m_text, '\n', m_length) == nullptr)
        m_text[m_length++] = '\n';
}

void TraceLine::stamp(std::string_view date, int milliseconds)
{
    char *const place = m_text + m_stampPlace;
    std::memcpy(place, date.data(), date.size());
    char *const digits = place + date.size() + 1;
    digits[0] = static_cast<char>('0' + milliseconds / 100);
    digits[1] = static_cast<char>('0' + milliseconds / 10 % 10);
    digits[2] = static_cast<char>('0' + milliseconds % 10);
}

/// Makes the system read the rules of the time zone: it allocates for them.
TraceHistory::TraceHistory()
{
    std::fill_n(m_date, dateLength, '0');
    TraceLine line;
    const platform::Locked guard(m_lock);
    stamp(line, platform::wallClock());
}

void TraceHistory::note(const char *file, int line, const char *format, va_list *arguments)
{
    if (format == nullptr || strnlen(format, longestFormat + 1) > longestFormat)
        return;
    const platform::ErrorNumberKept kept;
    TraceLine text;
    text.appendMessage(format, arguments);
    if (file != nullptr)
        text.appendPosition(file, line);
    text.end();
    const platform::WallClock now = platform::wallClock();
    const platform::Locked guard(m_lock);
    stamp(text, now);
    append(text.text());
}

// A date of another length, beyond the year 9999, is not worth a line that grows: the last one stays.
void TraceHistory::stamp(TraceLine &line, platform::WallClock now)
{
    if (now.seconds != m_dateSecond) {
        char date[32];
        if (platform::formatLocalTime(date, sizeof date, dateFormat, now.seconds) == dateLength)
            std::memcpy(m_date, date, dateLength);
        m_dateSecond = now.seconds;
    }
    line.stamp({m_date, dateLength}, now.milliseconds);
}

void TraceHistory::append(std::string_view line)
{
    const std::size_t place = m_total % ringSize;
    const std::size_t first = std::min(line.size(), ringSize - place);
    std::memcpy(m_ring + place, line.data(), first);
    std::memcpy(m_ring, line.data() + first, line.size() - first);
    m_total += line.size();
}

/// As much of the newest text as the limit allows, from its first line end on if something had to go. There
/// is one: each line has one, and two lines are far shorter than the limit.
std::array<std::string_view, 2> TraceHistory::text() const
{
    constexpr std::uint64_t mostKept = historyLimit - 2;
    const std::size_t kept = std::min(m_total, mostKept);
    const std::size_t place = (m_total - kept) % ringSize;
    const std::size_t first = std::min(kept, ringSize - place);
    std::array<std::string_view, 2> pieces{{{m_ring + place, first}, {m_ring, kept - first}}};
    bool isWhole = m_total <= mostKept;
    for (std::string_view &piece : pieces) {
        if (!isWhole)
            piece.remove_prefix(std::min(piece.find('\n'), piece.size()));
        isWhole = isWhole || !piece.empty();
    }
    return pieces;
}

/// False: somebody keeps the lock for a second, most likely a thread that crashed with it.
bool TraceHistory::lockUnlessStuck() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    for (int attempt = 0; !m_lock.tryLock(); ++attempt) {
        if (attempt == lockAttempts)
            return false;
        platform::sleepFor(std::chrono::milliseconds(1));
    }
    return true;
}

void TraceHistory::dump(const char *crashLog) ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    const platform::ErrorNumberKept kept;
    const bool isMine = lockUnlessStuck();
    gyxLog(nullptr, 0, "\n");
    gyxLog(nullptr, 0, "%s", heading + 1);
    if (platform::AppendFile file(crashLog); file.isOpen()) {
        file.write(heading);
        for (const std::string_view piece : text())
            file.write(piece);
    }
    if (isMine)
        m_lock.unlock();
}

void TraceHistory::hold() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    m_lock.lock();
}

void TraceHistory::release() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    m_lock.unlock();
}

TraceHistory &traceHistory()
{
    static auto *const history = [] {
        const platform::ErrorNumberKept kept; // the rules of the time zone may be missing
        return new TraceHistory;
    }();
    return *history;
}

void logHistory(const char *file, int line, const char *format, va_list *arguments)
{
    traceHistory().note(file, line, format, arguments);
}

void logHistory(const char *file, int line, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    traceHistory().note(file, line, format, &arguments);
    va_end(arguments);
}

void dumpLogHistory()
{
    traceHistory().dump(crashLogPath);
}

} // namespace Zorvan
