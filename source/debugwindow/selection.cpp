#include "debugwindow/selection.h"

#include <algorithm>

namespace Zorvan {

void Selection::begin(TextPosition at)
{
    m_isActive = true;
    m_start = at;
    m_end = at;
}

void Selection::extendTo(TextPosition at)
{
    if (!m_isActive)
        begin(at);
    m_end = at;
}

void Selection::selectAll(std::int64_t rowCount)
{
    begin({0, 0});
    extendTo({std::max<std::int64_t>(rowCount - 1, 0), lastColumnOfAll});
}

void Selection::clear()
{
    *this = Selection();
}

std::optional<ColumnRange> Selection::columnsOf(std::int64_t row, std::int64_t length) const
{
    if (!m_isActive || row < first().row || row > last().row)
        return std::nullopt;
    ColumnRange columns{0, length};
    if (row == first().row)
        columns.begin = std::clamp<std::int64_t>(first().column, 0, length);
    if (row == last().row)
        columns.end = std::clamp<std::int64_t>(last().column, 0, length);
    return columns;
}

} // namespace Zorvan
