#pragma once

#include "debugwindow/rowcopy.h"

#include <QStringList>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace Zorvan::test {

/// All stored lines as one text.
inline QByteArray allLines(const CFilteredTextBuffer &buffer)
{
    QByteArray text;
    forEachPiece(buffer, mostBytesOfArray, [&text](const QByteArray &piece) {
        text = piece;
        return true;
    });
    return text;
}

/// The memory that a buffer gets: no block beyond a size.
struct Memory
{
    static inline std::uint64_t largestBlock = UINT32_MAX;
    static void *reallocate(void *block, std::size_t bytes)
    {
        return bytes > largestBlock ? nullptr : std::realloc(block, bytes);
    }
};

/// What the text buffer promises, without regard to speed. Its growing blocks hold nothing: they only know
/// when there is no memory.
class PlainBuffer
{
public:
    explicit PlainBuffer(std::uint32_t step)
        : textBlock(Memory::reallocate, step * 128)
        , startBlock(Memory::reallocate, step)
        , indexBlock(Memory::reallocate, step)
    {}
    void setMaximumLineCount(std::size_t count) { maximum = count; }
    void setMemoryLimit(std::uint32_t bytes)
    {
        limit = bytes;
        indexBlock.setMostBytes(bytes > 0 ? bytes / 4 : 1 << 30);
    }
    void appendLine(std::string line)
    {
        wraps |= (maximum > 0 && starts.size() >= maximum) || (limit > 0 && position + 1024 >= limit);
        if (!wraps) {
            wraps |= !textBlock.makeRoom(position + line.size() + 1);
            wraps |= !startBlock.makeRoom(starts.size() + 1);
            text.resize(textBlock.capacity());
        }
        if (wraps && starts.empty()) {
            wraps = false;
            return;
        }
        if (wraps && (position + 1024 >= text.size() || position + line.size() + 1 > text.size()))
            position = 0;
        if (wraps)
            ringStart = ringStart < starts.size() ? ringStart + 1 : 0;
        else
            starts.push_back(0);
        line.resize(std::min(line.size(), text.size() - 1));
        slot = slot < starts.size() ? slot : 0;
        starts[slot++] = position;
        text.replace(position, line.size() + 1, line.c_str(), line.size() + 1);
        position += line.size() + 1;
        if (isFiltering())
            indexNew(line);
    }
    void addPattern(const QString &pattern)
    {
        texts.append(pattern);
        hasPatterns = true;
        setMarkedOutputOnly(markedOnly);
    }
    /// Of two equal ones that follow each other the second stays; rows stay entries of the index.
    void removePattern(const QString &pattern)
    {
        for (int i = 0; i < texts.size(); ++i) {
            if (texts[i] == pattern)
                texts.removeAt(i);
        }
    }
    void clearPatterns()
    {
        texts.clear();
        hasPatterns = false;
    }
    QString patterns() const { return texts.join(QLatin1Char('|')); }
    void setMarkedOutputOnly(bool on)
    {
        markedOnly = on;
        if (!isFiltering())
            clearIndex();
        for (std::size_t i = 0; i < starts.size() && isFiltering(); ++i)
            matches(text.c_str() + starts[i]) && enter(i);
    }
    void setExtraLines(std::size_t lines)
    {
        extra = lines;
        const bool wasOn = markedOnly;
        setMarkedOutputOnly(false);
        setMarkedOutputOnly(wasOn);
    }
    void clearAll()
    {
        clearIndex();
        textBlock.release();
        startBlock.release();
        starts.clear();
        position = slot = ringStart = 0;
        wraps = false;
    }
    std::size_t lineCount() const { return starts.size(); }
    std::size_t rowCount() const
    {
        return markedOnly ? index.size() - std::min(indexStart, index.size()) : starts.size();
    }
    std::string_view line(std::size_t row) const
    {
        if (starts.empty())
            return {};
        const std::size_t line = slotOfRow(row);
        return line < starts.size() ? text.c_str() + starts[line] : "";
    }
    std::size_t slotOfLine(std::size_t row) const { return (ringStart + row) % starts.size(); }
    std::size_t slotOfRow(std::size_t row) const
    {
        return isFiltering() ? index[indexStart + row] : slotOfLine(row);
    }
    std::string_view copiedLine(std::size_t line) const
    {
        if (line >= starts.size())
            return {};
        const std::string_view whole = text.c_str() + starts[line];
        const std::size_t next = starts[(line + 1) % starts.size()];
        const bool isWhole = line + 1 == slot || next < starts[line];
        return isWhole ? whole : whole.substr(0, next - starts[line]);
    }

private:
    bool isFiltering() const { return markedOnly && hasPatterns; }
    void indexNew(const std::string &line)
    {
        if (wraps && index.size() > 1 && index[0] < ringStart)
            drop(1, 2 * extra + 1);
        if (!matches(line))
            return;
        if (!enter(slot - 1))
            drop(index.size() / 4, index.size() / 4);
        indexStart += wraps ? 1 : 0;
    }
    bool matches(std::string_view line) const
    {
        const auto isIn = [&](const QString &pattern) {
            return line.find(pattern.toLatin1().toStdString()) != line.npos;
        };
        return std::any_of(texts.begin(), texts.end(), isIn);
    }
    bool enter(std::size_t marked)
    {
        if (!indexBlock.makeRoom(index.size() + 2 * extra + 1))
            return false;
        for (std::size_t k = marked - std::min(extra, marked); k <= marked + extra; ++k) {
            if (k >= marked || index.empty() || index.back() < k)
                index.push_back(k);
        }
        return true;
    }
    void drop(std::size_t fromFront, std::size_t count)
    {
        const std::size_t left = index.size() - std::min(count, index.size());
        index.erase(index.begin(), index.begin() + static_cast<std::ptrdiff_t>(fromFront));
        index.resize(left);
        indexStart -= std::min(count, indexStart);
    }
    void clearIndex()
    {
        index.clear();
        indexBlock.release();
        indexStart = 0;
    }

    GrowingBlock<char> textBlock;
    GrowingBlock<int> startBlock, indexBlock;
    std::string text;
    QStringList texts;
    std::vector<std::size_t> starts, index;
    std::size_t position = 0, slot = 0, ringStart = 0, indexStart = 0;
    std::size_t maximum = 300000, limit = 0, extra = 0;
    bool wraps = false, markedOnly = false, hasPatterns = false;
};

inline const char *const testPatterns[] = {"a", "bc", "7", "g\xE9", "xxx", "3cd", "xxxxxxxxxxxab", ""};

template <typename Buffer>
void operate(Buffer &buffer, unsigned operation, unsigned value, std::size_t number)
{
    switch (operation) {
    case 0:
        return buffer.addPattern(QLatin1String(testPatterns[value % 8]));
    case 1:
        return value < 64 ? buffer.clearPatterns()
                          : buffer.removePattern(QLatin1String(testPatterns[value % 8]));
    case 2:
    case 3:
        return buffer.setMarkedOutputOnly(value < 170);
    case 4:
        return buffer.setExtraLines(value % 5);
    case 5:
        return buffer.setMaximumLineCount(value);
    case 6:
        return buffer.setMemoryLimit(value * 64);
    case 7:
        return buffer.clearAll();
    case 8:
        Memory::largestBlock = value < 128 ? value * 64 : UINT32_MAX;
        return;
    default:
        for (unsigned i = 9; i <= operation; ++i)
            buffer.appendLine(std::to_string(number * 32 + i)
                              + std::string(operation == 9 ? value * 8 : value % 32, 'x')
                              + std::string("abcdefg\xE9").substr(value * i % 8));
    }
}

inline bool findAlike(const CFilteredTextBuffer &buffer, const PlainBuffer &plain, unsigned value)
{
    const char *const text = testPatterns[value % 8];
    const auto count = static_cast<std::int64_t>(plain.rowCount());
    const std::int64_t from = value * count / 200 - 1;
    const auto isIn = [&](std::int64_t row) {
        return plain.line(static_cast<std::size_t>(row)).find(text) != std::string_view::npos;
    };
    std::int64_t down = std::max<std::int64_t>(from, 0);
    while (down < count && !isIn(down))
        ++down;
    std::int64_t up = std::min(from, count - 1);
    while (up >= 0 && !isIn(up))
        --up;
    const TextPattern pattern{QString(QLatin1String(text))};
    return buffer.findDown(pattern, from) == (down < count ? down : -1) && buffer.findUp(pattern, from) == up;
}

inline bool copyAlike(const CFilteredTextBuffer &buffer, const PlainBuffer &plain)
{
    std::string shown;
    for (std::size_t row = 0; row < plain.rowCount(); ++row)
        shown.append(shown.empty() ? "" : "\n").append(plain.copiedLine(plain.slotOfRow(row)));
    std::string stored;
    for (std::size_t row = 0; row < plain.lineCount(); ++row)
        stored.append("\n").append(plain.copiedLine(plain.slotOfLine(row)));
    std::string pieces;
    bool areBounded = true;
    forEachPiece(buffer, 40, [&](const QByteArray &piece) {
        areBounded = areBounded && (piece.size() <= 40 || piece.count('\n') == 0);
        pieces.append("\n").append(piece.toStdString());
        return true;
    });
    return copiedText(buffer, {}) == QString::fromLatin1(shown.data(), static_cast<int>(shown.size()))
        && allLines(buffer).toStdString() == stored.substr(stored.empty() ? 0 : 1) && areBounded
        && pieces == stored;
}

/// Has the buffer and its model do what bytes say. False: they came to differ.
inline bool behaveAlike(const std::uint8_t *bytes, std::size_t size)
{
    const std::uint32_t step = size > 0 ? 1 + bytes[0] % 24U : 1;
    CFilteredTextBuffer buffer(Memory::reallocate);
    PlainBuffer plain(step);
    buffer.sizeGrowthSteps(step << 17U);
    Memory::largestBlock = UINT32_MAX;
    bool areEqual = true;
    for (std::size_t i = 0; areEqual && i + 1 < std::min<std::size_t>(size, 200); i += 2) {
        operate(buffer, bytes[i] % 32U, bytes[i + 1], i);
        operate(plain, bytes[i] % 32U, bytes[i + 1], i);
        areEqual = buffer.patterns() == plain.patterns() && buffer.lineCount() == plain.lineCount()
            && buffer.rowCount() == plain.rowCount();
        for (std::size_t row = 0; areEqual && row < plain.rowCount(); row += 1 + plain.rowCount() / 4096)
            areEqual = buffer.line(static_cast<std::int64_t>(row)) == plain.line(row);
        areEqual = areEqual && findAlike(buffer, plain, bytes[i + 1]);
        areEqual = areEqual && (i % 32 != 0 || copyAlike(buffer, plain));
    }
    return areEqual && copyAlike(buffer, plain);
}

} // namespace Zorvan::test
