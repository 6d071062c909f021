#pragma once

#include "lowlevelfunctions/simplecasmutex.h"

#include <cstdarg>
#include <cstdint>
#include <string>

namespace Zorvan {

/// Formats like vsnprintf(); without arguments like formatWithoutArguments(). The list is copied, not
/// consumed. A text that cannot be formatted is empty.
[[nodiscard]] std::string formatLogMessage(const char *format, va_list *arguments);

/// Path of file 0 or 1 of a tag in the program-data folder.
[[nodiscard]] std::string logPath(const char *tag, int file);

/// The tag of messages without one.
extern const char *const defaultLogTag;

/// A channel of the system log: the pair of files of one tag, written by turns, and the lock that guards
/// them.
///
/// Each message is one write to a file opened for append, so that other processes can read, move or share the
/// file and a crash loses nothing. A file that cannot be opened swallows its messages; counting goes on. The
/// properties of the log are read once, by the constructor. Any thread may write.
class simpleDebugMutex final : public simpleCASMutex
{
public:
    /// Null: the default tag.
    explicit simpleDebugMutex(const char *tag);

    /// Writes one message as "time: file(line): text", without the position when \a file is null.
    void write(const char *file, int line, const char *format, va_list *arguments) ZORVAN_EXCLUDES(this);

private:
    void inspectFiles() ZORVAN_REQUIRES(this);
    [[nodiscard]] std::int64_t inspectFile(const std::string &path) const ZORVAN_REQUIRES(this);
    bool countMessage() ZORVAN_REQUIRES(this);
    void beginLine(const char *file, int line) ZORVAN_REQUIRES(this);
    void appendMessage(const char *format, va_list *arguments) ZORVAN_REQUIRES(this);
    void append(const char *text, std::size_t length) ZORVAN_REQUIRES(this);
    void reserve(std::size_t capacity) ZORVAN_REQUIRES(this);
    void output(bool switched) ZORVAN_REQUIRES(this);

    const std::string m_paths[2];
    const std::int64_t m_maximumCount; // messages per file
    const bool m_clearAtFirstUse;
    const bool m_fileOutput;
    const bool m_consoleOutput; // each line to standard error as well

    bool m_initialised ZORVAN_GUARDED_BY(this) = false;
    std::int64_t m_count ZORVAN_GUARDED_BY(this) = 0; // messages in the current file
    unsigned m_fileIndex ZORVAN_GUARDED_BY(this) = 0; // only counts up: the current file is m_fileIndex & 1
    std::string m_line ZORVAN_GUARDED_BY(this); // reused buffer: its size is a capacity, grown in steps
    std::size_t m_length ZORVAN_GUARDED_BY(this) = 0; // of the line in m_line
    std::int64_t m_stampSecond ZORVAN_GUARDED_BY(this) = -1;
    char m_stamp[32] ZORVAN_GUARDED_BY(this) = ""; // local time of m_stampSecond
};

} // namespace Zorvan
