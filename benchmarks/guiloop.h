#pragma once

/// A host with an event loop: the main thread runs it, what measures runs in another thread.

#include <QByteArray>

#include <atomic>
#include <cstdio>
#include <functional>
#include <vector>

namespace bench {

/// Calls \a measuring in a thread of its own while the calling thread, which has the application object, runs
/// the event loop.
void measureBesideLoop(const std::function<void()> &measuring);

/// Waits until the main thread has done everything that was posted to it, a batch of lines included, and
/// gives it the time to fall asleep. Not in the main thread.
void settleLoop();

/// A stream that counts what it gets and drops it. A batch of up to a megabyte arrives as one write.
class CountingStream
{
public:
    CountingStream();
    CountingStream(const CountingStream &) = delete;
    CountingStream &operator=(const CountingStream &) = delete;

    [[nodiscard]] FILE *file() const { return m_file; }
    /// Writes and flushes; in one thread.
    void write(const QByteArray &text);

    [[nodiscard]] long lines() const { return m_lines.load(std::memory_order_acquire); }
    [[nodiscard]] long writes() const { return m_writes.load(std::memory_order_acquire); }

private:
    static ssize_t count(void *stream, const char *bytes, std::size_t size);

    std::atomic<long> m_lines{0};
    std::atomic<long> m_writes{0};
    std::vector<char> m_buffer;
    FILE *const m_file;
};

/// The stream that takes the place of the standard output, where the library's lines end in this version.
CountingStream &standardOutput();

} // namespace bench
