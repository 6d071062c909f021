#include "lowlevelfunctions/logchannel.h"

#include "lowlevelfunctions/argumentlessformat.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "lowlevelfunctions/plaintext.h"
#include "platform/clock.h"
#include "platform/errornumber.h"
#include "platform/files.h"
#include "platform/folders.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Zorvan {

namespace {

constexpr std::size_t bufferStep = 1024;

/// vsnprintf() on a copy of the list, so that it can be read twice.
int formatInto(char *buffer, std::size_t capacity, const char *format, va_list *arguments)
{
    va_list copy;
    va_copy(copy, *arguments);
    const int length = std::vsnprintf(buffer, capacity, format, copy);
    va_end(copy);
    return length;
}

} // namespace

const char *const defaultLogTag = "GYX-syslog";

std::string formatLogMessage(const char *format, va_list *arguments)
{
    if (arguments == nullptr || format == nullptr)
        return formatWithoutArguments(format);
    const int length = formatInto(nullptr, 0, format, arguments);
    std::string text(static_cast<std::size_t>(std::max(0, length)), '\0');
    if (length > 0)
        formatInto(text.data(), text.size() + 1, format, arguments);
    return text;
}

std::string logPath(const char *tag, int file)
{
    return platform::programDataFolder() + platform::pathSeparator + (tag ? tag : defaultLogTag) + '-'
        + std::to_string(file) + ".log";
}

simpleDebugMutex::simpleDebugMutex(const char *tag)
    : m_paths{logPath(tag, 0), logPath(tag, 1)}
    , m_maximumCount(lowlevelProperty(LowlevelProperty::gyxLogMessageCount, 50000))
    , m_clearAtFirstUse(lowlevelProperty(LowlevelProperty::gyxLogMessageClear, 0) == 1)
    , m_fileOutput(lowlevelProperty(LowlevelProperty::gyxLogMessageFileOutput, 1) == 1)
    , m_consoleOutput(lowlevelProperty(LowlevelProperty::gyxLogMessageConsoleOutput, 0) == 1)
{}

void simpleDebugMutex::write(const char *file, int line, const char *format, va_list *arguments)
{
    const platform::Locked<simpleCASMutex> guard(*this);
    if (!m_initialised) {
        const platform::ErrorNumberKept kept;
        inspectFiles();
    }
    const bool switched = countMessage();
    if (!m_fileOutput && !m_consoleOutput)
        return;
    beginLine(file, line);
    const std::size_t begin = m_length;
    appendMessage(format, arguments);
    blankNullCharacters(m_line.data() + begin, m_length - begin);
    output(switched);
}

/// Lines in the file, or 0 after deleting it; -1 if it does not exist.
std::int64_t simpleDebugMutex::inspectFile(const std::string &path) const
{
    if (!platform::fileExists(path.c_str()))
        return -1;
    if (m_clearAtFirstUse) {
        platform::discardFile(path.c_str());
        return 0;
    }
    return std::max<std::int64_t>(0, platform::countLineFeeds(path.c_str()));
}

/// Resumes the file with fewer lines; file 0 when they are equal or file 1 is missing.
void simpleDebugMutex::inspectFiles()
{
    const std::int64_t lines0 = std::max<std::int64_t>(0, inspectFile(m_paths[0]));
    const std::int64_t lines1 = inspectFile(m_paths[1]);
    m_count = lines0;
    if (lines1 >= 0 && lines0 > lines1) {
        m_count = lines1;
        m_fileIndex = 1;
    }
    m_initialised = true;
}

/// True if this message begins a file anew. That message is not counted: a full file holds one more than the
/// maximum.
bool simpleDebugMutex::countMessage()
{
    if (++m_count <= m_maximumCount)
        return false;
    m_count = 0;
    ++m_fileIndex;
    return true;
}

void simpleDebugMutex::reserve(std::size_t capacity)
{
    if (capacity > m_line.size())
        m_line.resize((capacity + bufferStep - 1) / bufferStep * bufferStep);
}

void simpleDebugMutex::append(const char *text, std::size_t length)
{
    reserve(m_length + length);
    std::memcpy(m_line.data() + m_length, text, length);
    m_length += length;
}

void simpleDebugMutex::beginLine(const char *file, int line)
{
    const platform::WallClock now = platform::wallClock();
    if (now.seconds != m_stampSecond) {
        const std::size_t length =
            platform::formatLocalTime(m_stamp, sizeof m_stamp, "%Y/%m/%d-%H:%M:%S", now.seconds);
        m_stamp[length] = '\0';
        m_stampSecond = now.seconds;
    }
    m_length = 0;
    append(m_stamp, std::strlen(m_stamp));
    char piece[24];
    append(piece, static_cast<std::size_t>(std::snprintf(piece, sizeof piece, ".%03d: ", now.milliseconds)));
    if (file == nullptr)
        return;
    append(file, std::strlen(file));
    append(piece, static_cast<std::size_t>(std::snprintf(piece, sizeof piece, "(%d): ", line)));
}

void simpleDebugMutex::appendMessage(const char *format, va_list *arguments)
{
    if (arguments == nullptr || format == nullptr) {
        const std::string text = formatWithoutArguments(format);
        append(text.data(), text.size());
        return;
    }
    reserve(m_length + 1);
    const std::size_t room = m_line.size() - m_length;
    const int length = formatInto(m_line.data() + m_length, room, format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) >= room) {
        reserve(m_length + static_cast<std::size_t>(length) + 1);
        formatInto(m_line.data() + m_length, m_line.size() - m_length, format, arguments);
    }
    m_length += static_cast<std::size_t>(std::max(0, length));
}

void simpleDebugMutex::output(bool switched)
{
    const std::string_view line(m_line.data(), m_length);
    if (m_consoleOutput)
        std::fwrite(line.data(), 1, line.size(), stderr);
    if (!m_fileOutput)
        return;
    using Start = platform::AppendFile::Start;
    const char *const path = m_paths[m_fileIndex & 1U].c_str();
    const Start start = switched ? Start::Empty : Start::Continue;
    if (platform::AppendFile file(path, start); file.isOpen()) {
        file.write(line);
        return;
    }
    platform::makeProgramDataFolder(); // the first message of a machine, or somebody took the folder away
    platform::AppendFile(path, start).write(line);
}

} // namespace Zorvan
