#include "debugwindow/filteredtextbuffer.h"

#include <zorvan/debug.h>

#include <QCursor>
#include <QGuiApplication>
#include <QStringList>

#include <algorithm>
#include <array>

namespace Zorvan {

namespace {

constexpr std::int64_t mostExtraLines = 100000;

/// Of a run of lines that are searched for all patterns, one after the other: it stays in the processor's
/// cache.
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
    std::vector<RepeatedSearch> searches(m_patterns.begin(), m_patterns.end());
    for (std::uint32_t slot = 0; slot < m_lineCount;) {
        const std::uint32_t end = endOfShortRun(slot);
        if (!indexRun(searches, slot, end))
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

bool CFilteredTextBuffer::indexRun(std::vector<RepeatedSearch> &searches, std::uint32_t first,
                                   std::uint32_t end)
{
    std::array<bool, mostLinesOfRun> isMarked{};
    for (RepeatedSearch &search : searches)
        findInRun(search, first, end, isMarked.data());
    for (std::uint32_t slot = first; slot < end; ++slot) {
        if (isMarked[slot - first] && !m_filterIndex.enter(slot, m_extraLines))
            return false;
    }
    return true;
}

void CFilteredTextBuffer::findInRun(RepeatedSearch &search, std::uint32_t first, std::uint32_t end,
                                    bool *isMarked) const
{
    const std::string_view text = textOfRun(first, end);
    for (std::uint32_t slot = first; slot < end; ++slot) {
        const auto searched = static_cast<std::size_t>(textOf(slot) - text.data());
        const std::size_t distance = search.findIn(text.substr(searched));
        if (distance == TextPattern::notFound)
            return;
        const char *const found = textOf(slot) + distance;
        while (slot + 1 < end && textOf(slot + 1) <= found)
            ++slot;
        isMarked[slot - first] = true;
    }
}

} // namespace Zorvan
