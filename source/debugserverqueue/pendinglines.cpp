#include "debugserverqueue/pendinglines.h"

#include <zorvan/debug.h>

#include <utility>

namespace Zorvan {

namespace {

constexpr std::size_t blockBytes = 65536; // the open block is closed beyond it
constexpr std::size_t largestSpareText = 4 * blockBytes;
constexpr std::int64_t mostLines = 1000000;
constexpr std::size_t mostBytes = std::size_t(256) << 20;

void appendBlock(std::string &batch, const std::string &text, bool isFirst)
{
    if (!isFirst)
        batch += '\n';
    batch += text;
}

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
        m_fullLines -= firstKept->lines;
        m_fullBytes -= firstKept->text.size();
        ++firstKept;
    }
    if (firstKept == m_full.begin())
        return false; // a single line of that size
    m_full.erase(m_full.begin(), firstKept);
    return !std::exchange(m_overflown, true);
}

bool PendingLines::take(std::string &batch)
{
    batch.clear();
    const platform::Locked guard(m_lock);
    forgetCount();
    if (isEmpty())
        return false;
    if (m_full.empty()) {
        batch.swap(m_open.text);
    } else {
        batch.reserve(m_fullBytes + m_full.size() + m_open.text.size());
        for (const Block &block : m_full)
            appendBlock(batch, block.text, &block == &m_full.front());
        appendBlock(batch, m_open.text, false);
    }
    clearLocked();
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
