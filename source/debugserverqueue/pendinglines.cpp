#include "debugserverqueue/pendinglines.h"

#include <zorvan/debug.h>

#include <utility>

namespace Zorvan {

namespace {

constexpr std::size_t blockBytes = 65536; // the open block is closed beyond it
constexpr std::size_t largestSpareText = 4 * blockBytes;
constexpr std::int64_t mostLines = 1000000;
constexpr std::size_t mostBytes = std::size_t(256) << 20;

} // namespace

bool PendingLines::append(std::string_view line)
{
    bool isFirst = false;
    bool dropped = false;
    {
        const platform::Locked guard(m_lock);
        isFirst = isEmpty();
        dropped = appendLocked(line);
        m_count.fetch_add(1, std::memory_order_relaxed);
    }
    if (dropped)
        reportDropped();
    return isFirst;
}

std::string PendingLines::joined(const std::vector<Block> &blocks, const std::string &last)
{
    std::size_t size = last.size();
    for (const Block &block : blocks)
        size += block.text.size() + 1;
    std::string text;
    text.reserve(size + 1); // for the line feed that the receiver of a batch adds
    for (const Block &block : blocks)
        (text += block.text) += '\n';
    return text += last;
}

/// True if lines were dropped for the first time since the last batch.
bool PendingLines::appendLocked(std::string_view line)
{
    if (m_open.lines > 0) {
        if (m_open.text.size() + line.size() >= blockBytes)
            closeBlock();
        else
            m_open.text += '\n';
    }
    m_open.text += line;
    ++m_open.lines;
    return isTooMuch() && dropOldest();
}

void PendingLines::closeBlock()
{
    m_fullLines += m_open.lines;
    m_fullBytes += m_open.text.size();
    m_full.push_back(std::move(m_open));
    m_open = Block();
    m_open.text.reserve(blockBytes);
}

bool PendingLines::isTooMuch() const
{
    return m_fullLines + m_open.lines > mostLines || m_fullBytes + m_open.text.size() > mostBytes;
}

bool PendingLines::dropOldest()
{
    auto firstKept = m_full.begin();
    while (firstKept != m_full.end() && isTooMuch()) {
        m_count.fetch_sub(static_cast<std::int32_t>(firstKept->lines), std::memory_order_relaxed);
        m_fullLines -= firstKept->lines;
        m_fullBytes -= firstKept->text.size();
        ++firstKept;
    }
    if (firstKept == m_full.begin())
        return false; // a single line of that size
    m_full.erase(m_full.begin(), firstKept);
    return !std::exchange(m_overflown, true);
}

bool PendingLines::hasLines() const
{
    const platform::Locked guard(m_lock);
    return !isEmpty();
}

bool PendingLines::take(std::string &batch)
{
    batch.clear();
    std::vector<Block> full; // joined without the lock: printing threads wait for it
    {
        const platform::Locked guard(m_lock);
        forgetCount();
        if (isEmpty())
            return false;
        full.swap(m_full);
        batch.swap(m_open.text);
        clearLocked();
    }
    if (!full.empty())
        batch = joined(full, batch);
    return true;
}

void PendingLines::clear()
{
    const platform::Locked guard(m_lock);
    forgetCount();
    clearLocked();
}

void PendingLines::unlockInChild()
{
    forgetCount();
    clearLocked();
    m_lock.unlock();
}

void PendingLines::clearLocked()
{
    m_full.clear();
    m_fullLines = 0;
    m_fullBytes = 0;
    m_open.lines = 0;
    m_open.text.clear();
    if (m_open.text.capacity() > largestSpareText)
        m_open.text.shrink_to_fit();
    m_overflown = false;
}

void PendingLines::reportDropped()
{
    gyxLog("source/debugserverqueue", __LINE__,
           "++++ the GUI thread does not take its lines: the oldest are dropped\n");
}

} // namespace Zorvan
