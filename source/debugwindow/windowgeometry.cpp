#include "debugwindow/windowgeometry.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStringList>
#include <QWidget>

#include <array>

namespace Zorvan::windowgeometry {

namespace {

constexpr int farthestPx = 32767; // window systems count in 16 bits
constexpr qint64 largestPicturePx = 64 * 1024 * 1024; // of a window, or its memory could not be had
constexpr QRect areaWithoutDisplay{0, 0, 1024, 768}; // all displays may be unplugged

bool isSoundSize(const QSize &size)
{
    return size.width() >= 1 && size.height() >= 1
        && qint64{size.width()} * size.height() <= largestPicturePx;
}

} // namespace

std::optional<QRect> parsed(const QString &stored)
{
    const QStringList pieces = stored.split(QLatin1Char(';'));
    std::array<int, 4> numbers{};
    if (pieces.size() != static_cast<int>(numbers.size()))
        return std::nullopt;
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        bool isNumber = false;
        numbers.at(i) = pieces.at(static_cast<int>(i)).toInt(&isNumber);
        if (!isNumber || numbers.at(i) > farthestPx || numbers.at(i) < -farthestPx)
            return std::nullopt;
    }
    const QRect client(numbers[0], numbers[1], numbers[2], numbers[3]);
    return isSoundSize(client.size()) ? std::optional(client) : std::nullopt;
}

QString formatted(const QRect &client)
{
    return QStringLiteral("%1;%2;%3;%4")
        .arg(client.x())
        .arg(client.y())
        .arg(client.width())
        .arg(client.height());
}

Desktop desktop()
{
    const QScreen *const primary = QGuiApplication::primaryScreen();
    if (primary == nullptr)
        return {areaWithoutDisplay, 1};
    return {primary->availableGeometry(), static_cast<int>(QGuiApplication::screens().size())};
}

QRect defaultStrip(const Desktop &desktop)
{
    const QRect &area = desktop.area;
    return {area.x() + frameMarginPx, area.y() + area.height() - frameMarginPx - stripHeightPx,
            qMax(1, area.width() - 2 * frameMarginPx), stripHeightPx};
}

QRect centred(const QSize &size, const Desktop &desktop)
{
    const QRect room = desktop.area.adjusted(frameMarginPx, titleMarginPx, -frameMarginPx, -frameMarginPx);
    QRect client({}, size.boundedTo(room.size()).expandedTo({1, 1}));
    client.moveCenter(room.center());
    return client;
}

QRect placed(const QString &stored, const Desktop &desktop)
{
    return placed(stored, desktop, defaultStrip(desktop));
}

QRect placed(const QString &stored, const Desktop &desktop, const QRect &standard)
{
    QRect client = parsed(stored).value_or(standard);
    if (desktop.displays != 1)
        return client;
    const QRect &area = desktop.area;
    if (client.x() > area.x() + area.width() || client.x() + client.width() <= area.x()) {
        client.moveLeft(standard.x());
        client.setWidth(standard.width());
    }
    if (client.y() > area.y() + area.height() || client.y() + client.height() <= area.y()) {
        client.moveTop(standard.y());
        client.setHeight(standard.height());
    }
    return client;
}

QPoint framePosition(const QRect &client)
{
    return client.topLeft() - QPoint(frameMarginPx, titleMarginPx);
}

QRect placeOf(const QWidget &window, const QRect &restored)
{
    if (!window.isMaximized() && !window.isFullScreen()) {
        const bool wasMoved = window.pos() != framePosition(restored);
        return wasMoved ? window.geometry() : QRect(restored.topLeft(), window.size());
    }
    const QRect client = window.normalGeometry(); // behind a frame that is not known now
    const bool wasMoved = !QRect(framePosition(restored), restored.topLeft()).contains(client.topLeft());
    return wasMoved ? client : QRect(restored.topLeft(), client.size());
}

} // namespace Zorvan::windowgeometry
