#include "debugwindow/filteredtextbuffer.h"

#include <zorvan/debug.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace Zorvan {

namespace {

constexpr std::uint32_t initialTextStep = 8388608; // bytes
constexpr std::uint32_t initialIndexStep = 65536; // lines
constexpr std::uint32_t endMargin = 1024; // bytes: longer lines are seldom

} // namespace

CFilteredTextBuffer::CFilteredTextBuffer(Reallocate reallocate)
    : m_text(reallocate, initialTextStep)
    , m_lineStarts(reallocate, initialIndexStep)
    , m_filterIndex(reallocate, initialIndexStep)
{}

void CFilteredTextBuffer::sizeGrowthSteps(std::uint64_t availableBytes)
{
    const auto textStep = static_cast<std::uint32_t>(availableBytes / 1024);
    m_text.setGrowthStep(textStep);
    m_lineStarts.setGrowthStep(textStep / 128);
    m_filterIndex.setGrowthStep(textStep / 128);
    gyxLog("source/debugwindow", 138, "CFilteredTextBuffer allocation block size will be %d KBytes\n",
           static_cast<int>((textStep > 0 ? textStep : initialTextStep) / 1024));
}

std::uint64_t CFilteredTextBuffer::allocatedBytes() const
{
    return std::uint64_t(m_text.capacity()) + m_lineStarts.capacity() + m_filterIndex.capacity();
}

void CFilteredTextBuffer::appendLine(std::string_view text)
{
    m_lastRead = {};
    beginRingIfFull(text.size());
    if (m_wraparound && m_lineCount == 0) { // no memory for the first line, but perhaps for the next
        m_wraparound = false;
        return;
    }
    if (m_wraparound)
        advanceRing(text.size());
    else
        ++m_lineCount;
    const std::string_view stored = store(text);
    if (isFiltering())
        indexNewLine(stored);
}

void CFilteredTextBuffer::appendLine(const QString &text)
try {
    const QByteArray bytes = text.toLatin1();
    appendLine(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
} catch (const std::bad_alloc &) { // as a line that finds no room
}

bool CFilteredTextBuffer::isNearEnd(std::uint32_t bytes) const
{
    return std::uint64_t(m_textWritePosition) + endMargin >= bytes;
}

void CFilteredTextBuffer::beginRingIfFull(std::size_t length)
{
    if (m_maximumLineCount > 0 && m_lineCount >= m_maximumLineCount)
        m_wraparound = true;
    if (m_memoryLimit > 0 && isNearEnd(m_memoryLimit))
        m_wraparound = true;
    if (m_wraparound)
        return;
    const bool hasText = m_text.makeRoom(std::uint64_t(m_textWritePosition) + length + 1);
    const bool hasSlot = m_lineStarts.makeRoom(std::uint64_t(m_writeSlot) + 1); // whether or not the text has
    m_wraparound = !hasText || !hasSlot;
}

/// The bytes from the write position on are those of the oldest lines, or nearly so: their slots may still be
/// shown, with what is there now.
void CFilteredTextBuffer::advanceRing(std::size_t length)
{
    const std::uint32_t capacity = m_text.capacity();
    if (isNearEnd(capacity) || std::uint64_t(m_textWritePosition) + length + 1 > capacity)
        m_textWritePosition = 0;
    m_ringStart = m_ringStart < m_lineCount ? m_ringStart + 1 : 0;
}

/// The block has no gaps of unwritten bytes before its last written one, and every write ends in a zero byte:
/// wherever a slot points to, even into lines that came later, a zero byte follows inside the block.
std::string_view CFilteredTextBuffer::store(std::string_view text)
{
    if (m_writeSlot >= m_lineCount)
        m_writeSlot = 0;
    m_lineStarts[m_writeSlot++] = m_textWritePosition;
    char *const stored = m_text.elements() + m_textWritePosition;
    const std::size_t length = text.copy(stored, m_text.capacity() - m_textWritePosition - 1);
    if (std::memchr(stored, 0, length) != nullptr)
        std::replace(stored, stored + length, '\0', ' ');
    stored[length] = '\0';
    m_textWritePosition += static_cast<std::uint32_t>(length) + 1;
    return {stored, length};
}

void CFilteredTextBuffer::clearAll()
{
    m_lastRead = {};
    m_text.release();
    m_lineStarts.release();
    m_filterIndex.clear();
    m_textWritePosition = 0;
    m_lineCount = 0;
    m_ringStart = 0;
    m_writeSlot = 0;
    m_wraparound = false;
}

std::uint32_t CFilteredTextBuffer::rowCount() const
{
    return m_markedOutputOnly ? m_filterIndex.rowCount() : m_lineCount;
}

std::uint32_t CFilteredTextBuffer::slotOf(Rows rows, std::int64_t row) const
{
    if (row < 0 || m_lineCount == 0)
        return noSlot;
    if (rows == Rows::Stored || !isFiltering()) {
        const std::uint64_t slot = m_ringStart + static_cast<std::uint64_t>(row);
        return static_cast<std::uint32_t>(slot < m_lineCount ? slot : slot % m_lineCount); // divides seldom
    }
    return row < m_filterIndex.rowCount() ? m_filterIndex.slotOf(static_cast<std::uint32_t>(row)) : noSlot;
}

const char *CFilteredTextBuffer::textOf(std::uint32_t slot) const
{
    return m_text.elements() + m_lineStarts[slot];
}

/// The end of a line is looked for once, even if the slots of thousands of lines that were written over point
/// into it.
std::string_view CFilteredTextBuffer::lineOf(std::uint32_t slot) const
{
    const char *const text = textOf(slot);
    const char *const known = m_lastRead.data();
    const char *end = known + m_lastRead.size();
    if (known == nullptr || text > end) {
        end = text + std::strlen(text);
    } else if (text < known) {
        const void *const zero = std::memchr(text, 0, static_cast<std::size_t>(known - text));
        end = zero != nullptr ? static_cast<const char *>(zero) : end;
    }
    m_lastRead = {text, static_cast<std::size_t>(end - text)};
    return m_lastRead;
}

std::string_view CFilteredTextBuffer::line(std::int64_t row) const
{
    const std::uint32_t slot = slotOf(Rows::Shown, row);
    return slot < m_lineCount ? lineOf(slot) : std::string_view();
}

QString CFilteredTextBuffer::text(std::int64_t row) const
try {
    const std::string_view bytes = line(row).substr(0, mostCharactersOfString);
    return QString::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
} catch (const std::bad_alloc &) {
    return {};
}

/// The slot behind the last of those that follow each other as the rows do.
std::uint32_t CFilteredTextBuffer::endOfSequence(Rows rows, std::int64_t row, std::int64_t end) const
{
    const std::uint32_t first = slotOf(rows, row);
    const std::int64_t most = std::min<std::int64_t>(end - row, m_lineCount - first);
    if (rows == Rows::Stored || !isFiltering())
        return first + static_cast<std::uint32_t>(most);
    std::uint32_t length = 1;
    while (length < std::min<std::int64_t>(most, mostLinesOfRun)
           && slotOf(rows, row + length) == first + length)
        ++length;
    return first + length;
}

/// A run: slots whose lines lie one behind the other. Until the ring begins, all do; then a line may have
/// been written over, so that it ends early or in a newer line.
std::uint32_t CFilteredTextBuffer::endOfRun(std::uint32_t first, std::uint32_t end) const
{
    if (!m_wraparound)
        return end;
    const std::uint32_t most = std::min(end - first, mostLinesOfRun);
    std::uint32_t slot = first;
    const char *next = textOf(first) + lineOf(first).size() + 1;
    while (++slot < first + most && textOf(slot) == next)
        next += std::strlen(next) + 1;
    return slot;
}

std::string_view CFilteredTextBuffer::textOfRun(std::uint32_t first, std::uint32_t end) const
{
    const std::uint32_t distance = m_lineStarts[end - 1] - m_lineStarts[first];
    return {textOf(first), distance + lineOf(end - 1).size()};
}

Stretch CFilteredTextBuffer::stretch(Rows rows, std::int64_t row, std::int64_t end) const
{
    const std::uint32_t first = slotOf(rows, row);
    if (first >= m_lineCount)
        return {{}, 1};
    const std::uint32_t runEnd = endOfRun(first, endOfSequence(rows, row, std::max(end, row + 1)));
    return {textOfRun(first, runEnd), runEnd - first};
}

Stretch CFilteredTextBuffer::stretchToCopy(Rows rows, std::int64_t row, std::int64_t end) const
{
    Stretch copied = stretch(rows, row, end);
    const std::uint32_t last = slotOf(rows, row + copied.rowCount - 1);
    if (last >= m_lineCount || last + 1 == m_writeSlot) // no line, or the newest
        return copied;
    const std::size_t length = lineOf(last).size();
    const std::uint32_t distance = m_lineStarts[(last + 1) % m_lineCount] - m_lineStarts[last];
    if (distance < length) // if the next begins before, the difference is beyond all lengths
        copied.text.remove_suffix(length - distance);
    return copied;
}

/// The row that a place in the text of shown rows belongs to.
std::int64_t CFilteredTextBuffer::rowAt(std::int64_t firstRow, const Stretch &rows, std::size_t place) const
{
    if (rows.rowCount == 1)
        return firstRow;
    const std::uint32_t *const first = m_lineStarts.elements() + slotOf(Rows::Shown, firstRow);
    return firstRow + (std::upper_bound(first, first + rows.rowCount, *first + place) - first) - 1;
}

std::int64_t CFilteredTextBuffer::findDown(const TextPattern &pattern, std::int64_t row) const
{
    RepeatedSearch search(pattern);
    const std::int64_t end = rowCount();
    for (std::int64_t i = std::max<std::int64_t>(row, 0); i < end;) {
        const Stretch rows = stretch(Rows::Shown, i, end);
        const std::size_t found = search.findIn(rows.text);
        if (found != TextPattern::notFound)
            return rowAt(i, rows, found);
        i += rows.rowCount;
    }
    return -1;
}

/// More rows at once the longer it takes: near the last hit there is often another.
std::int64_t CFilteredTextBuffer::findUp(const TextPattern &pattern, std::int64_t row) const
{
    RepeatedSearch search(pattern);
    std::int64_t end = std::min<std::int64_t>(row, std::int64_t(rowCount()) - 1) + 1;
    for (std::int64_t count = 4; end > 0; count = std::min<std::int64_t>(2 * count, mostLinesOfRun)) {
        const std::int64_t begin = std::max<std::int64_t>(end - count, 0);
        const std::int64_t found = findLast(search, begin, end);
        if (found >= 0)
            return found;
        end = begin;
    }
    return -1;
}

std::int64_t CFilteredTextBuffer::findLast(RepeatedSearch &search, std::int64_t row, std::int64_t end) const
{
    std::int64_t last = -1;
    for (std::int64_t i = row; i < end;) {
        const Stretch rows = stretch(Rows::Shown, i, end);
        const std::size_t found = search.findIn(rows.text);
        if (found != TextPattern::notFound)
            last = rowAt(i, rows, found);
        i = found != TextPattern::notFound ? last + 1 : i + rows.rowCount;
    }
    return last;
}

} // namespace Zorvan
