#include "debugwindow/visiblerows.h"

#include <algorithm>

namespace Zorvan {

namespace {

/// \a fitting times \a value through \a rowCount, to the nearest integer; 0 without rows.
std::int64_t correctionFor(std::int64_t value, std::int64_t rowCount, int fitting)
{
    if (rowCount <= 0 || fitting <= 0)
        return 0;
    const std::int64_t product = fitting * std::clamp<std::int64_t>(value, 0, rowCount);
    const std::int64_t remainder = product % rowCount;
    return product / rowCount + (remainder >= rowCount - remainder ? 1 : 0);
}

} // namespace

VisibleRows visibleRowsAt(int scrollValue, std::int64_t rowCount, int fitting)
{
    VisibleRows rows;
    rows.count = std::max(fitting, 0);
    rows.correction = static_cast<int>(correctionFor(scrollValue, rowCount, fitting));
    // The scroll bar may not know yet that there are fewer rows now.
    const std::int64_t value = std::clamp<std::int64_t>(scrollValue, 0, std::max<std::int64_t>(rowCount, 0));
    rows.first = std::max<std::int64_t>(value - rows.correction, 0);
    return rows;
}

std::int64_t scrollValueFor(std::int64_t row, std::int64_t rowCount, int fitting)
{
    return row - std::max(fitting, 0) / 2 + correctionFor(row, rowCount, fitting);
}

} // namespace Zorvan
