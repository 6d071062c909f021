#pragma once

/// Size and place of a message box on the display. Pixels throughout, no widgets.

#include <QMargins>
#include <QPoint>
#include <QSize>

namespace Zorvan {

/// What the window manager is taken to put around a box: the true frame is known only once a box is shown.
constexpr QMargins windowFrame{8, 30, 8, 8};

/// The display and what is to be kept free of boxes along its sides.
struct DisplayArea
{
    QSize size;
    QMargins keptFree;
};

/// Replaces what cannot be meant: a display too small or too large for a window has the desktop's size, and
/// margins that are negative or leave no room for a box count as none.
[[nodiscard]] DisplayArea soundArea(const DisplayArea &asked, QSize desktop);

/// The largest box, without its frame.
[[nodiscard]] QSize roomForBox(const DisplayArea &display);

struct BoxWidth
{
    int px = 0;
    bool wraps = false; ///< the content is wider than the box
};
/// \a content: what the widest part wants on one line, with the margins of the box.
[[nodiscard]] BoxWidth boxWidth(int content, const DisplayArea &display);

struct BoxHeight
{
    int px = 0;
    bool isFixed = false; ///< all is visible with room to spare: nothing scrolls, the user need not resize
};
/// \a content: all parts of the box at that width, with margins and spacing.
[[nodiscard]] BoxHeight boxHeight(int content, BoxWidth width, const DisplayArea &display);

/// Where the top left corner of the frame goes: the middle of the area that is not kept free.
[[nodiscard]] QPoint boxPosition(QSize box, const DisplayArea &display);

} // namespace Zorvan
