#include "debugwindow/filteredtextbuffer.h"

#include <zorvan/debug.h>

#include <QCursor>
#include <QGuiApplication>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cstring>

namespace Zorvan {

namespace {

constexpr std::uint32_t initialTextStep = 8388608; // bytes
constexpr std::uint32_t initialIndexStep = 65536; // lines
constexpr std::uint32_t endMargin = 1024; // bytes: longer lines are seldom
constexpr std::int64_t mostExtraLines = 100000;

/// A run of lines that are searched for all patterns, one after the other: it stays in the processor's cache.
constexpr std::uint32_t mostLinesOfRun = 256;
constexpr std::uint32_t mostBytesOfRun = 16384;

class WaitCursor
{
public:
    WaitCursor()
        : m_isShown(qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr)
    {
        if (m_isShown) // Qt aborts without a GUI
            QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~WaitCursor()
    {
        if (m_isShown)
            QGuiApplication::restoreOverrideCursor();
    }

private:
    bool m_isShown;
};

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
    beginRingIfFull(text.size());
    if (!m_wraparound)
        ++m_lineCount;
    else if (m_lineCount > 0)
        advanceRing(text.size());
    else
        return; // not even the first line found room
    const std::string_view stored = store(text);
    if (isFiltering())
        indexNewLine(stored);
}

void CFilteredTextBuffer::appendLine(const QString &text)
{
    const QByteArray bytes = text.toLatin1();
    appendLine(std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size())));
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

std::string_view CFilteredTextBuffer::line(std::int64_t row) const
{
    const std::uint32_t slot = slotOf(Rows::Shown, row);
    return slot < m_lineCount ? std::string_view(textOf(slot)) : std::string_view();
}

QString CFilteredTextBuffer::text(std::int64_t row) const
{
    const std::string_view bytes = line(row).substr(0, mostCharactersOfString);
    return QString::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
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
    std::uint32_t length = 1;
    for (const char *line = textOf(first); length < most; ++length) {
        const char *const next = line + std::strlen(line) + 1;
        if (textOf(first + length) != next)
            break;
        line = next;
    }
    return first + length;
}

std::string_view CFilteredTextBuffer::textOfRun(std::uint32_t first, std::uint32_t end) const
{
    const char *const text = textOf(first);
    const char *const lastLine = textOf(end - 1);
    return {text, static_cast<std::size_t>(lastLine - text) + std::strlen(lastLine)};
}

Stretch CFilteredTextBuffer::stretch(Rows rows, std::int64_t row, std::int64_t end) const
{
    const std::uint32_t first = slotOf(rows, row);
    if (first >= m_lineCount)
        return {{}, 1};
    const std::uint32_t runEnd = endOfRun(first, endOfSequence(rows, row, std::max(end, row + 1)));
    return {textOfRun(first, runEnd), runEnd - first};
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
    const std::int64_t end = rowCount();
    for (std::int64_t i = std::max<std::int64_t>(row, 0); i < end;) {
        const Stretch rows = stretch(Rows::Shown, i, end);
        const std::size_t found = pattern.findIn(rows.text);
        if (found != TextPattern::notFound)
            return rowAt(i, rows, found);
        i += rows.rowCount;
    }
    return -1;
}

/// More rows at once the longer it takes: near the last hit there is often another.
std::int64_t CFilteredTextBuffer::findUp(const TextPattern &pattern, std::int64_t row) const
{
    std::int64_t end = std::min<std::int64_t>(row, std::int64_t(rowCount()) - 1) + 1;
    for (std::int64_t count = 4; end > 0; count = std::min<std::int64_t>(2 * count, mostLinesOfRun)) {
        const std::int64_t begin = std::max<std::int64_t>(end - count, 0);
        const std::int64_t found = findLast(pattern, begin, end);
        if (found >= 0)
            return found;
        end = begin;
    }
    return -1;
}

std::int64_t CFilteredTextBuffer::findLast(const TextPattern &pattern, std::int64_t row,
                                           std::int64_t end) const
{
    std::int64_t last = -1;
    for (std::int64_t i = row; i < end;) {
        const Stretch rows = stretch(Rows::Shown, i, end);
        const std::size_t found = pattern.findIn(rows.text);
        if (found != TextPattern::notFound)
            last = rowAt(i, rows, found);
        i = found != TextPattern::notFound ? last + 1 : i + rows.rowCount;
    }
    return last;
}

PatternMatch CFilteredTextBuffer::match(std::string_view text) const
{
    PatternMatch result;
    for (std::size_t i = 0; i < m_patterns.size(); ++i) {
        result.length = m_patterns[i].text().size();
        const std::size_t position = m_patterns[i].findIn(text);
        if (position != TextPattern::notFound) {
            result.position = static_cast<std::int64_t>(position);
            result.place = static_cast<std::int64_t>(i);
            break;
        }
    }
    return result;
}

void CFilteredTextBuffer::addPattern(const QString &text)
{
    m_patterns.emplace_back(text);
    m_hasPatterns = true;
    setMarkedOutputOnly(m_markedOutputOnly);
}

void CFilteredTextBuffer::removePattern(const QString &text)
{
    for (std::size_t i = 0; i < m_patterns.size(); ++i) { // passes over the one behind a removed one
        if (m_patterns[i].text() == text)
            m_patterns.erase(m_patterns.begin() + static_cast<std::ptrdiff_t>(i));
    }
}

void CFilteredTextBuffer::clearPatterns()
{
    m_patterns.clear();
    m_hasPatterns = false;
}

QString CFilteredTextBuffer::patterns() const
{
    QStringList texts;
    for (const TextPattern &pattern : m_patterns)
        texts += pattern.text();
    return texts.join(QLatin1Char('|'));
}

void CFilteredTextBuffer::indexNewLine(std::string_view stored)
{
    if (m_wraparound)
        m_filterIndex.dropOverwritten(m_ringStart, m_extraLines);
    if (match(stored).position < 0)
        return;
    if (!m_filterIndex.enter(m_writeSlot - 1, m_extraLines)) {
        gyxLog("source/debugwindow", 220,
               "CFilteredTextBuffer resize of index filter array failed. Reducing message count\n");
        m_filterIndex.dropOldestQuarter();
    }
    if (m_wraparound)
        m_filterIndex.hideOldest();
}

void CFilteredTextBuffer::setMarkedOutputOnly(bool on)
{
    m_markedOutputOnly = on;
    if (!isFiltering()) {
        m_filterIndex.clear();
        return;
    }
    const WaitCursor cursor;
    for (std::uint32_t slot = 0; slot < m_lineCount;) {
        const std::uint32_t end = endOfShortRun(slot);
        if (!indexRun(slot, end))
            return; // without memory, what was found so far is shown
        slot = end;
    }
}

void CFilteredTextBuffer::setExtraLines(std::int64_t count)
{
    m_extraLines = static_cast<std::uint32_t>(std::clamp<std::int64_t>(count, 0, mostExtraLines));
    if (!m_markedOutputOnly)
        return;
    m_filterIndex.clear();
    setMarkedOutputOnly(true);
}

std::uint32_t CFilteredTextBuffer::endOfShortRun(std::uint32_t first) const
{
    const std::uint32_t end = endOfRun(first, first + std::min(m_lineCount - first, mostLinesOfRun));
    const std::uint32_t *const starts = m_lineStarts.elements();
    const std::uint64_t behind = std::uint64_t(starts[first]) + mostBytesOfRun;
    return static_cast<std::uint32_t>(std::upper_bound(starts + first + 1, starts + end, behind) - starts);
}

bool CFilteredTextBuffer::indexRun(std::uint32_t first, std::uint32_t end)
{
    std::array<bool, mostLinesOfRun> isMarked{};
    for (const TextPattern &pattern : m_patterns)
        findInRun(pattern, first, end, isMarked.data());
    for (std::uint32_t slot = first; slot < end; ++slot) {
        if (isMarked[slot - first] && !m_filterIndex.enter(slot, m_extraLines))
            return false;
    }
    return true;
}

void CFilteredTextBuffer::findInRun(const TextPattern &pattern, std::uint32_t first, std::uint32_t end,
                                    bool *isMarked) const
{
    const std::string_view text = textOfRun(first, end);
    for (std::uint32_t slot = first; slot < end; ++slot) {
        const auto searched = static_cast<std::size_t>(textOf(slot) - text.data());
        const std::size_t distance = pattern.findIn(text.substr(searched));
        if (distance == TextPattern::notFound)
            return;
        const char *const found = textOf(slot) + distance;
        while (slot + 1 < end && textOf(slot + 1) <= found)
            ++slot;
        isMarked[slot - first] = true;
    }
}

} // namespace Zorvan
