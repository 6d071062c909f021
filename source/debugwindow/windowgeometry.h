#pragma once

#include <QRect>
#include <QString>

#include <optional>

class QWidget;

namespace Zorvan::windowgeometry {

/// How far the client area lies inside the frame of a window, in pixels: right and bottom like left.
constexpr int frameMarginPx = 8;
constexpr int titleMarginPx = 30;
constexpr int stripHeightPx = 200;

/// The client rectangle of a stored "x;y;width;height". Nothing if that is anything but four decimal
/// integers, or a window that no display can show.
[[nodiscard]] std::optional<QRect> parsed(const QString &stored);
[[nodiscard]] QString formatted(const QRect &client);

/// The area where windows may be, and how many displays there are. Without a display: one of common size.
struct Desktop
{
    QRect area; ///< of the primary display
    int displays = 1;
};
[[nodiscard]] Desktop desktop();

/// The strip at the bottom of the primary display.
[[nodiscard]] QRect defaultStrip(const Desktop &desktop);
/// In the middle of the primary display, and no larger than fits there with a frame.
[[nodiscard]] QRect centred(const QSize &size, const Desktop &desktop);
/// The client rectangle for a new window: the stored one if it is sound. On the only display a window that
/// would lie beside or below it gets that part of its place from the default strip.
[[nodiscard]] QRect placed(const QString &stored, const Desktop &desktop);
/// The same with another place in the role of the strip.
[[nodiscard]] QRect placed(const QString &stored, const Desktop &desktop, const QRect &standard);
/// Where QWidget::move() has to put the frame for this client rectangle.
[[nodiscard]] QPoint framePosition(const QRect &client);
/// The client rectangle of a window when it is not maximised, to be stored. A window that is where it was put
/// keeps the place that led there: real frames are not as wide as it is reckoned with, and it would wander a
/// little at each start.
[[nodiscard]] QRect placeOf(const QWidget &window, const QRect &restored);

} // namespace Zorvan::windowgeometry
