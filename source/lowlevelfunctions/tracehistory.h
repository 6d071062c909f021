#pragma once

#include "lowlevelfunctions/simplecasmutex.h"
#include "platform/clock.h"

#include <array>
#include <cstdarg>
#include <cstdint>
#include <string_view>

namespace Zorvan {

class TraceLine;

/// The newest trace points of the process as text, oldest first: 10,238 characters at most.
///
/// Lines that are noted push out the oldest ones; what is kept then begins with the line end of the last one
/// that went. A line without a line end of its own, because its message had one further in, is continued by
/// the next.
///
/// Any thread. Noting a line allocates nothing and touches no file. It is formatted before the lock is taken:
/// a format that does not fit its arguments ends the process with the lock free. Lines of several threads may
/// come in another order than their times, by as long as a thread waits for the lock.
class TraceHistory
{
public:
    TraceHistory();

    /// See logHistory(). Leaves the caller's errno alone.
    void note(const char *file, int line, const char *format, va_list *arguments) ZORVAN_EXCLUDES(m_lock);
    /// See dumpLogHistory(); \a crashLog is the path of the file. Leaves the caller's errno alone.
    void dump(const char *crashLog) ZORVAN_EXCLUDES(m_lock);

    /// For fork(): nothing changes from hold() to release().
    void hold();
    void release();

private:
    bool lockUnlessStuck();
    /// The history: its pieces up to the end of the ring and from its start on.
    [[nodiscard]] std::array<std::string_view, 2> text() const ZORVAN_REQUIRES(m_lock);
    void stamp(TraceLine &line, platform::WallClock now) ZORVAN_REQUIRES(m_lock);
    void append(std::string_view line) ZORVAN_REQUIRES(m_lock);

    static constexpr std::size_t dateLength = 19;
    // Larger than the history: which line is the first is only asked when somebody wants to see it.
    static constexpr std::size_t ringSize = 16 * 1024;
    static constexpr std::size_t cacheLine = 64;

    simpleCASMutex m_lock;
    // Apart from the lock, which waiters read all the time.
    alignas(cacheLine) std::uint64_t m_total ZORVAN_GUARDED_BY(m_lock) = 0; // characters ever noted
    std::int64_t m_dateSecond ZORVAN_GUARDED_BY(m_lock) = -1;
    char m_date[dateLength] ZORVAN_GUARDED_BY(m_lock); // local time of m_dateSecond
    alignas(cacheLine) char m_ring[ringSize] ZORVAN_GUARDED_BY(m_lock);
};

/// The history of this process. Never destroyed. Made when the library is loaded, or before by static objects
/// of the host: making it allocates and reads a file, which a crashing process should not have to do.
TraceHistory &traceHistory();

} // namespace Zorvan
