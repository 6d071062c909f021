// What the host has stored about windows and message boxes: places, sizes and fonts, perhaps of another
// display.

#include "debugserverqueue/displaysettings.h"
#include "debugwindow/windowfonts.h"
#include "debugwindow/windowgeometry.h"
#include "fuzzapplication.h"
#include "fuzzcheck.h"
#include "fuzzhost.h"

using namespace Zorvan;

namespace {

void checkPlace(const QString &stored)
{
    const std::optional<QRect> parsed = windowgeometry::parsed(stored);
    if (parsed) {
        require(windowgeometry::parsed(windowgeometry::formatted(*parsed)) == parsed);
        require(parsed->width() >= 1 && parsed->height() >= 1);
    }
    const windowgeometry::Desktop several{QRect(100, 50, 800, 480), 2};
    require(windowgeometry::placed(stored, several)
            == parsed.value_or(windowgeometry::defaultStrip(several)));
    const windowgeometry::Desktop one{several.area, 1};
    const QRect placed = windowgeometry::placed(stored, one);
    require(placed.intersects(one.area.adjusted(0, 0, 1, 1))); // just touching counts
    require(windowgeometry::placed(windowgeometry::formatted(placed), one) == placed);
}

void checkFonts()
{
    const WindowFonts fonts = readWindowFonts();
    for (const QFont &font : {fonts.output, fonts.userInterface})
        require(font.pointSize() >= 1 && font.pointSize() <= 200 && !font.family().isEmpty());
}

void checkBox(int content)
{
    const DisplaySettings display = readDisplaySettings();
    require(display.fontSizePt >= 1 && display.fontSizePt <= 72);
    require(display.fontWeight >= 0 && display.fontWeight <= 99);
    const BoxWidth width = boxWidth(content, display.area);
    const BoxHeight height = boxHeight(content, width, display.area);
    const QMargins &kept = display.area.keptFree;
    require(std::min({kept.left(), kept.top(), kept.right(), kept.bottom()}) >= 0);
    const QRect free = QRect(QPoint(), display.area.size).marginsRemoved(kept);
    const QSize frame(windowFrame.left() + windowFrame.right(), windowFrame.top() + windowFrame.bottom());
    const QSize box(width.px, height.px);
    const QRect outer(boxPosition(box, display.area), box + frame);
    require(free.adjusted(-1, -1, 1, 1).contains(outer)); // halves of pixels are cut off
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    startApplication();
    static Host host;
    Input input(data, size);
    const auto text = [&] { return QString::fromStdString(std::string(input.line())); };
    checkPlace(text());
    host.settings().clear();
    for (const char *const key :
         {"DebugServerDebugFont", "DebugServerDebugFontSize", "DebugServerDebugFontWeight", "MessageFont",
          "MessageFontSize", "MessageFontWeight", "DisplayWidth", "DisplayHeight", "leftMessageBoxMargin",
          "topMessageBoxMargin", "rightMessageBoxMargin", "bottomMessageBoxMargin"}) {
        const QString value = text();
        if (!value.isEmpty())
            host.settings()[QString::fromLatin1(key)] = value;
    }
    checkFonts();
    checkBox(static_cast<int>(input.byte() * 256 + input.byte()));
    return 0;
}
