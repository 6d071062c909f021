#include "debugserverqueue/boxlayout.h"

#include <QtGlobal>

namespace Zorvan {

namespace {

constexpr QSize smallestDisplay{160, 120};
constexpr int largestDisplay = 32767; // of the coordinates of window systems
constexpr QSize smallestRoom{120, 80};

constexpr QSize frameSize{windowFrame.left() + windowFrame.right(), windowFrame.top() + windowFrame.bottom()};

/// Whether a length fits even when it grows by a tenth.
bool fitsAmply(int length, int usable)
{
    return length <= usable && length * 11 <= usable * 10;
}

bool isSound(int length, int smallest)
{
    return length >= smallest && length <= largestDisplay;
}

/// Two opposite margins leave \a needed of \a length.
bool leave(int needed, int length, int margin, int opposite)
{
    return margin >= 0 && opposite >= 0 && margin <= length && opposite <= length
        && length - margin - opposite >= needed;
}

QSize usableArea(const DisplayArea &display)
{
    return display.size.shrunkBy(display.keptFree);
}

} // namespace

DisplayArea soundArea(const DisplayArea &asked, QSize desktop)
{
    DisplayArea sound = asked;
    if (!isSound(asked.size.width(), smallestDisplay.width()))
        sound.size.setWidth(desktop.width());
    if (!isSound(asked.size.height(), smallestDisplay.height()))
        sound.size.setHeight(desktop.height());

    const QSize needed = smallestRoom + frameSize;
    QMargins &margins = sound.keptFree;
    if (!leave(needed.width(), sound.size.width(), margins.left(), margins.right())) {
        margins.setLeft(0);
        margins.setRight(0);
    }
    if (!leave(needed.height(), sound.size.height(), margins.top(), margins.bottom())) {
        margins.setTop(0);
        margins.setBottom(0);
    }
    return sound;
}

QSize roomForBox(const DisplayArea &display)
{
    return usableArea(display) - frameSize;
}

BoxWidth boxWidth(int content, const DisplayArea &display)
{
    const int room = roomForBox(display).width();
    if (content > room)
        return {room, true};
    return {fitsAmply(content, usableArea(display).width()) ? content : room, false};
}

BoxHeight boxHeight(int content, BoxWidth width, const DisplayArea &display)
{
    const int room = roomForBox(display).height();
    const bool isFixed = !width.wraps && content <= room && fitsAmply(content, usableArea(display).height());
    return {qMin(content, room), isFixed};
}

QPoint boxPosition(QSize box, const DisplayArea &display)
{
    const QSize left = (display.size - box - frameSize);
    const QMargins &kept = display.keptFree;
    return {left.width() / 2 - (kept.right() - kept.left()) / 2,
            left.height() / 2 - (kept.bottom() - kept.top()) / 2};
}

} // namespace Zorvan
