#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <string_view>

namespace Zorvan {

/// A text to look for in stored lines: case-sensitive, no wildcards.
///
/// Lines are Latin-1 bytes without a zero byte, and so is what findIn() compares: no line has to become a
/// QString. A text with any other character is in no line.
class TextPattern
{
public:
    static constexpr std::size_t notFound = std::string_view::npos;

    explicit TextPattern(const QString &text);

    [[nodiscard]] const QString &text() const { return m_text; }
    /// Where it first begins, or notFound. The empty text begins at 0. As \a bytes may be several lines with
    /// zero bytes between them, a long stretch is searched at once: that is faster than line by line.
    [[nodiscard]] std::size_t findIn(std::string_view bytes) const;

private:
    QString m_text;
    std::string m_bytes;
    bool m_canOccur;
    std::size_t m_rarest = 0; // place of the byte that is likely to be the rarest in lines
    std::size_t m_secondRarest = 0;
};

/// Looks for a pattern in one text after the other, of which many may be ends of the one before: slots that
/// were written over point into a longer line. All of them together take as long as the longest alone.
///
/// The pattern and the texts must outlive it, and stay as they are.
class RepeatedSearch
{
public:
    explicit RepeatedSearch(const TextPattern &pattern)
        : m_pattern(&pattern)
    {}
    /// As TextPattern::findIn().
    [[nodiscard]] std::size_t findIn(std::string_view text);

private:
    [[nodiscard]] std::size_t findInLonger(std::string_view text) const;

    const TextPattern *m_pattern;
    std::string_view m_searched; // from here on up to m_found, or to the end, the pattern is nowhere else
    std::size_t m_found = 0; // in m_searched, or notFound
};

} // namespace Zorvan
