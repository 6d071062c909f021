#pragma once

#include <cstdint>

namespace Zorvan {

/// Which rows the view shows: the value of its scroll bar, from 0 to the number of rows, stands for a place
/// in the rows, so that 0 shows row 0 on top and the highest value the last row at the bottom.
struct VisibleRows
{
    int count = 0; ///< whole rows that fit into the view
    int correction = 0; ///< how far the row on top lies above the scroll value
    std::int64_t first = 0; ///< the row on top
};

/// \a fitting: how many whole rows the view has room for.
[[nodiscard]] VisibleRows visibleRowsAt(int scrollValue, std::int64_t rowCount, int fitting);

/// The scroll value that shows \a row in the middle of the view; may lie outside the range of the scroll bar.
[[nodiscard]] std::int64_t scrollValueFor(std::int64_t row, std::int64_t rowCount, int fitting);

} // namespace Zorvan
