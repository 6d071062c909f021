#pragma once

#include "debugwindow/filteredtextbuffer.h"
#include "debugwindow/latinfont.h"
#include "debugwindow/selection.h"
#include "debugwindow/visiblerows.h"

#include <QRect>

namespace Zorvan {

/// What the view shows at one moment.
struct RowsToPaint
{
    const CFilteredTextBuffer &buffer;
    const LatinFont &font;
    const Selection &selection;
    const TextPattern *searchText = nullptr; ///< null: nothing is looked for
    std::int64_t foundRow = -1;
    VisibleRows rows;
    int textOffset = 0; ///< pixels that the text is shifted to the left
    bool lineNumbers = false;
};

/// Pixels from the left edge to the text; 0 without line numbers.
[[nodiscard]] int numberColumnWidth(const RowsToPaint &view);

/// Where the rows that are to be painted for \a exposed begin and end, counted from the row on top. Letters
/// and backgrounds reach a little beyond their row, so there is one more at either end.
struct RowRange
{
    int begin = 0;
    int end = 0;
};
[[nodiscard]] RowRange rowsIn(const QRect &exposed, const RowsToPaint &view);

/// Paints the rows that show in \a exposed; the paper is there already.
void paintRows(QPainter &painter, const RowsToPaint &view, const QRect &exposed);

} // namespace Zorvan
