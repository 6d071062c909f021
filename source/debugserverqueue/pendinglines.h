#pragma once

#include "platform/lock.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvan {

/// The finished lines that wait for the GUI thread, as Latin-1 bytes: a batch is ready to be sent or shown
/// without being built from its lines.
///
/// Any thread may call everything. Lines that nobody takes do not fill the memory: beyond 1,000,000 lines or
/// 256 MiB the oldest are dropped, a block of 64 KiB at a time, and the system log says so.
class PendingLines
{
public:
    PendingLines() = default;
    PendingLines(const PendingLines &) = delete;
    PendingLines &operator=(const PendingLines &) = delete;

    /// True if no other line waited: it begins a batch.
    bool append(std::string_view line);

    /// Sets the counter to 0 and moves all lines into \a batch, with a line feed between them. False: there
    /// was none, \a batch is empty. Give the same text again and again: its memory is used for later lines.
    bool take(std::string &batch);
    [[nodiscard]] bool hasLines() const ZORVAN_EXCLUDES(m_lock);
    /// Drops all lines.
    void clear();

    /// Lines appended since the last call of take(), clear() or forgetCount().
    [[nodiscard]] std::int32_t count() const { return m_count.load(std::memory_order_relaxed); }
    void forgetCount() { m_count.store(0, std::memory_order_relaxed); }

    /// Around fork(), in the forking thread. The child drops the lines: its parent still has them.
    void lockForFork() ZORVAN_ACQUIRE(m_lock) { m_lock.lock(); }
    void unlockInParent() ZORVAN_RELEASE(m_lock) { m_lock.unlock(); }
    void unlockInChild() ZORVAN_RELEASE(m_lock);

private:
    /// Lines with line feeds between them. An empty line counts, too.
    struct Block
    {
        std::string text;
        std::int64_t lines = 0;
    };

    [[nodiscard]] bool isEmpty() const ZORVAN_REQUIRES(m_lock) { return m_open.lines == 0 && m_full.empty(); }
    static std::string joined(const std::vector<Block> &blocks, const std::string &last);
    bool appendLocked(std::string_view line) ZORVAN_REQUIRES(m_lock);
    void closeBlock() ZORVAN_REQUIRES(m_lock);
    [[nodiscard]] bool isTooMuch() const ZORVAN_REQUIRES(m_lock);
    bool dropOldest() ZORVAN_REQUIRES(m_lock);
    void clearLocked() ZORVAN_REQUIRES(m_lock);
    static void reportDropped();

    mutable platform::Mutex m_lock;
    Block m_open ZORVAN_GUARDED_BY(m_lock); // takes the next line
    std::vector<Block> m_full ZORVAN_GUARDED_BY(m_lock); // the older ones; seldom more than none
    std::int64_t m_fullLines ZORVAN_GUARDED_BY(m_lock) = 0;
    std::size_t m_fullBytes ZORVAN_GUARDED_BY(m_lock) = 0;
    bool m_overflown ZORVAN_GUARDED_BY(m_lock) = false; // since the last batch
    std::atomic<std::int32_t> m_count{0};
};

} // namespace Zorvan
