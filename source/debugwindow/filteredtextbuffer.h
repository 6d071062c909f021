#pragma once

#include "debugwindow/filterindex.h"
#include "debugwindow/growingblock.h"
#include "debugwindow/textpattern.h"

#include <QString>

#include <cstdlib>
#include <limits>
#include <string_view>
#include <vector>

namespace Zorvan {

/// The first of the user's patterns that is in a text.
struct PatternMatch
{
    std::int64_t position = -1; ///< in the text; -1: no pattern is in it
    std::int64_t length = 0; ///< of the pattern
    std::int64_t place = -1; ///< of the pattern in the list
};

/// What a QString can hold.
constexpr std::size_t mostCharactersOfString = std::numeric_limits<int>::max() / 2 - 64;

/// Rows whose lines lie one behind the other in memory.
struct Stretch
{
    std::string_view text; ///< with a zero byte between two lines
    std::int64_t rowCount = 0;
};

/// All lines of the debug window, and on request an index of those that contain one of the user's patterns.
///
/// Lines are Latin-1 bytes with a zero byte behind each, packed into one block; a line costs four bytes
/// beyond that. Slots are numbered in the order in which they were first used. When memory, the line limit or
/// the memory limit is exhausted, the buffer becomes a ring until clearAll(): each line takes the slot of the
/// oldest. Row 0 is the line at the ring's start, which pauses for one line at the end of each round: the
/// rows then fall behind the slots by one, so that the newest line is not always the last row.
///
/// The GUI thread only. Nothing throws for want of memory for lines: the system log tells.
class CFilteredTextBuffer
{
public:
    explicit CFilteredTextBuffer(Reallocate reallocate = std::realloc);
    virtual ~CFilteredTextBuffer() = default;
    CFilteredTextBuffer(const CFilteredTextBuffer &) = delete;
    CFilteredTextBuffer &operator=(const CFilteredTextBuffer &) = delete;

    /// Makes the blocks grow by a fixed part of the memory that is available, and logs how much; what comes
    /// out as 0 stays as it is. Call it before the first line.
    void sizeGrowthSteps(std::uint64_t availableBytes);
    /// 0: none. From that many lines on the buffer is a ring.
    void setMaximumLineCount(std::uint32_t count) { m_maximumLineCount = count; }
    /// Of the text block, in bytes; 0: none. The buffer becomes a ring 1024 bytes before. The index of marked
    /// lines gets a quarter as much on top.
    void setMemoryLimit(std::uint32_t bytes)
    {
        m_memoryLimit = bytes;
        m_filterIndex.setMemoryLimit(bytes);
    }
    [[nodiscard]] std::uint32_t memoryLimit() const { return m_memoryLimit; }
    /// What the three blocks take.
    [[nodiscard]] std::uint64_t allocatedBytes() const;

    /// Stores one line of Latin-1 bytes, which lie outside this buffer. A zero byte becomes a blank; a line
    /// that is longer than the whole ring is cut off.
    void appendLine(std::string_view text);
    /// A character outside Latin-1 becomes a question mark.
    void appendLine(const QString &text);
    /// Drops lines and index; patterns, modes and limits stay.
    void clearAll();

    /// Lines that are stored.
    [[nodiscard]] std::uint32_t lineCount() const { return m_lineCount; }
    /// Rows to show: entries of the index if only marked lines are wanted, with or without patterns.
    [[nodiscard]] std::uint32_t rowCount() const;
    /// Valid until the buffer changes. Empty for a row without a line: index entries may stand for lines that
    /// have not come yet.
    [[nodiscard]] std::string_view line(std::int64_t row) const;
    /// The same for painting; of what is too long for a QString, the beginning.
    [[nodiscard]] QString text(std::int64_t row) const;

    enum class Rows {
        Shown, ///< rowCount() of them
        Stored, ///< lineCount() of them, whether or not only marked lines are shown
    };
    /// As many rows as can be had at once: from \a row on, at least that one, none from \a end on. Valid
    /// until the buffer changes.
    [[nodiscard]] Stretch stretch(Rows rows, std::int64_t row, std::int64_t end) const;
    /// The same, but of a line that the ring has written over only what lies before the next: its row shows
    /// the end of a newer line, and thousands may show the end of a long one.
    [[nodiscard]] Stretch stretchToCopy(Rows rows, std::int64_t row, std::int64_t end) const;

    /// The nearest row from \a row on, downwards or upwards, that has the pattern in its line; -1: none has.
    /// Rows that do not exist are passed over.
    [[nodiscard]] std::int64_t findDown(const TextPattern &pattern, std::int64_t row) const;
    [[nodiscard]] std::int64_t findUp(const TextPattern &pattern, std::int64_t row) const;

    /// The order of the list decides, not the position.
    [[nodiscard]] PatternMatch match(std::string_view text) const;
    /// If only marked lines are shown, all matching lines are entered once more, behind the others.
    void addPattern(const QString &text);
    /// Keeps the second of two equal patterns that follow each other. The index stays.
    void removePattern(const QString &text);
    /// The index stays, but rows are lines again.
    void clearPatterns();
    /// With "|" between them.
    [[nodiscard]] QString patterns() const;

    /// Shows only marked lines and their neighbours, after matching all lines under a wait cursor; entries
    /// that are there stay. Off, or without a pattern: frees the index.
    void setMarkedOutputOnly(bool on);
    [[nodiscard]] bool markedOutputOnly() const { return m_markedOutputOnly; }
    /// Lines before and behind each marked line, 0 to 100000; what is beyond is taken for the nearest. Makes
    /// the index anew if only marked lines are shown.
    void setExtraLines(std::int64_t count);
    [[nodiscard]] std::uint32_t extraLines() const { return m_extraLines; }

private:
    static constexpr std::uint32_t noSlot = 0xFFFFFFFF;
    static constexpr std::uint32_t mostLinesOfRun = 256;

    void beginRingIfFull(std::size_t length);
    void advanceRing(std::size_t length);
    std::string_view store(std::string_view text);
    [[nodiscard]] bool isNearEnd(std::uint32_t bytes) const;
    [[nodiscard]] bool isFiltering() const { return m_hasPatterns && m_markedOutputOnly; }
    [[nodiscard]] std::uint32_t slotOf(Rows rows, std::int64_t row) const;
    [[nodiscard]] const char *textOf(std::uint32_t slot) const;
    [[nodiscard]] std::string_view lineOf(std::uint32_t slot) const;
    [[nodiscard]] std::uint32_t endOfSequence(Rows rows, std::int64_t row, std::int64_t end) const;
    [[nodiscard]] std::uint32_t endOfRun(std::uint32_t first, std::uint32_t end) const;
    [[nodiscard]] std::string_view textOfRun(std::uint32_t first, std::uint32_t end) const;
    [[nodiscard]] std::int64_t rowAt(std::int64_t firstRow, const Stretch &rows, std::size_t place) const;
    [[nodiscard]] std::int64_t findLast(RepeatedSearch &search, std::int64_t row, std::int64_t end) const;

    void indexNewLine(std::string_view stored);
    [[nodiscard]] std::uint32_t endOfShortRun(std::uint32_t first) const;
    bool indexRun(std::vector<RepeatedSearch> &searches, std::uint32_t first, std::uint32_t end);
    void findInRun(RepeatedSearch &search, std::uint32_t first, std::uint32_t end, bool *isMarked) const;

    GrowingBlock<char> m_text;
    std::uint32_t m_textWritePosition = 0;
    std::uint32_t m_maximumLineCount = 300000;
    std::uint32_t m_memoryLimit = 0;
    bool m_wraparound = false;
    GrowingBlock<std::uint32_t> m_lineStarts; // by slot, places in the text block
    std::uint32_t m_lineCount = 0;
    FilterIndex m_filterIndex;
    bool m_hasPatterns = false; // patterns that were removed one by one leave it on
    std::vector<TextPattern> m_patterns;
    bool m_markedOutputOnly = false;
    std::uint32_t m_ringStart = 0;
    std::uint32_t m_writeSlot = 0;
    std::uint32_t m_extraLines = 0;
    mutable std::string_view m_lastRead; // from its first byte on, up to the zero byte behind it
};

} // namespace Zorvan
