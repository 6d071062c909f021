#include "debugserverqueue/displaysettings.h"

#include "debugwindow/fontweight.h"
#include "host/hosthandlers.h"

#include <QGuiApplication>
#include <QScreen>

namespace Zorvan {

namespace {

constexpr int widestSmallDisplay = 320;
constexpr int largestFontPt = 72;
constexpr QSize sizeWithoutScreen{1024, 768}; // all displays may be unplugged

QSize desktopSize()
{
    const QScreen *const screen = QGuiApplication::primaryScreen();
    return screen ? screen->geometry().size() : sizeWithoutScreen;
}

DisplayArea readArea()
{
    const char *const group = "GuiDimensions";
    const QSize desktop = desktopSize();
    DisplayArea area;
    area.size = {host::readInteger(group, QStringLiteral("DisplayWidth"), desktop.width()),
                 host::readInteger(group, QStringLiteral("DisplayHeight"), desktop.height())};
    area.keptFree = {host::readInteger(QStringLiteral("leftMessageBoxMargin"), 0),
                     host::readInteger(QStringLiteral("topMessageBoxMargin"), 0),
                     host::readInteger(QStringLiteral("rightMessageBoxMargin"), 0),
                     host::readInteger(QStringLiteral("bottomMessageBoxMargin"), 0)};
    return soundArea(area, desktop);
}

} // namespace

bool isWide(const DisplayArea &area)
{
    return area.size.width() > widestSmallDisplay;
}

DisplaySettings readDisplaySettings()
{
    DisplaySettings settings;
    settings.area = readArea();
    const bool wide = isWide(settings.area);
    const int defaultSize = wide ? 10 : 7;
    const QString defaultFamily = wide ? QStringLiteral("Arial") : QStringLiteral("Lucinda Sans Unicode");
    settings.fontFamily = host::readString(QStringLiteral("MessageFont"), defaultFamily);
    settings.fontSizePt = host::readInteger(QStringLiteral("MessageFontSize"), defaultSize);
    if (settings.fontSizePt <= 0 || settings.fontSizePt > largestFontPt)
        settings.fontSizePt = defaultSize;
    settings.fontWeight = qBound(
        0, host::readInteger(QStringLiteral("MessageFontWeight"), fontweight::normal), fontweight::heaviest);
    return settings;
}

} // namespace Zorvan
