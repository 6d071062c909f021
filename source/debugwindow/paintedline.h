#pragma once

#include <Qt>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Zorvan {

/// A stored line as the view paints it: without its colour sequences (ESC "[" parameters "m"), in the colours
/// that these name. The colours hold for the whole line, wherever the sequence stands in it.
///
/// Columns count Latin-1 characters from 0. One object serves many lines: it keeps its memory.
class PaintedLine
{
public:
    PaintedLine() = default;
    PaintedLine(const PaintedLine &) = delete; // the text may lie inside
    PaintedLine &operator=(const PaintedLine &) = delete;

    /// \a stored must outlive the use of this object. A sequence without its "m" is painted as it stands.
    void set(std::string_view stored);

    [[nodiscard]] std::string_view text() const { return m_text; }
    [[nodiscard]] Qt::GlobalColor foreground() const { return m_foreground; }
    [[nodiscard]] std::optional<Qt::GlobalColor> background() const { return m_background; }

    /// The column in the stored line of a column in the painted one. Column 0 is the beginning of both, and
    /// what is at or behind the end of the one is at the end of the other: a whole line keeps its sequences.
    [[nodiscard]] std::int64_t storedColumn(std::int64_t paintedColumn) const;

private:
    void applyColors(std::string_view parameters);

    std::string_view m_stored;
    std::string_view m_text;
    std::string m_memory; // of the text, if it is not in one piece in the stored line
    Qt::GlobalColor m_foreground = Qt::black;
    std::optional<Qt::GlobalColor> m_background;
};

} // namespace Zorvan
