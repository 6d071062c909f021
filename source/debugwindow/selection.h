#pragma once

#include <cstdint>
#include <optional>

namespace Zorvan {

/// A place in the view: a row, and a column of the text as it is painted. Both count from 0.
struct TextPosition
{
    std::int64_t row = -1;
    std::int64_t column = -1;

    friend bool operator==(TextPosition a, TextPosition b) { return a.row == b.row && a.column == b.column; }
    friend bool operator<(TextPosition a, TextPosition b)
    {
        return a.row != b.row ? a.row < b.row : a.column < b.column;
    }
};

/// Columns from begin up to, but without, end.
struct ColumnRange
{
    std::int64_t begin = 0;
    std::int64_t end = 0;
};

/// What the user has selected in the view, from where the mouse was pressed to where it was moved, in either
/// direction. Rows and columns may lie behind the present ends of the text: the text may have become shorter.
class Selection
{
public:
    /// Ends on the last row at this column, however long the row is.
    static constexpr std::int64_t lastColumnOfAll = 1024;

    [[nodiscard]] bool isActive() const { return m_isActive; }
    [[nodiscard]] TextPosition start() const { return m_start; }
    [[nodiscard]] TextPosition end() const { return m_end; }
    /// Start and end in reading order.
    [[nodiscard]] TextPosition first() const { return m_end < m_start ? m_end : m_start; }
    [[nodiscard]] TextPosition last() const { return m_end < m_start ? m_start : m_end; }

    /// Selects nothing yet, from here.
    void begin(TextPosition at);
    /// Begins here if nothing was selected.
    void extendTo(TextPosition at);
    void selectAll(std::int64_t rowCount);
    void clear();

    /// The selected columns of a row whose painted text has \a length characters; none if the row is outside.
    [[nodiscard]] std::optional<ColumnRange> columnsOf(std::int64_t row, std::int64_t length) const;

private:
    bool m_isActive = false;
    TextPosition m_start;
    TextPosition m_end;
};

} // namespace Zorvan
