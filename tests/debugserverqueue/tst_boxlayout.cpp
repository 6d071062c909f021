// Size and place of message boxes.

#include "debugserverqueue/boxlayout.h"

#include <gtest/gtest.h>
#include <limits>
#include <utility>

namespace {

using namespace Zorvan;
using Length = std::pair<int, bool>; // pixels, and whether the width wraps or the height is fixed

Length widthOf(int content, const DisplayArea &display)
{
    const BoxWidth width = boxWidth(content, display);
    return {width.px, width.wraps};
}

Length heightOf(int content, const DisplayArea &display, bool wraps = false)
{
    const BoxHeight height = boxHeight(content, {200, wraps}, display);
    return {height.px, height.isFixed};
}

// The frame takes 16 pixels of the width and 38 of the height.
const DisplayArea large{{1024, 768}, {}};
const DisplayArea small{{320, 240}, {}};
const DisplayArea withMargins{{1024, 768}, {100, 20, 24, 48}}; // leaves 900 by 700

TEST(BoxWidth, HasATenthToSpareAndEndsAtTheFrame)
{
    EXPECT_EQ(widthOf(290, small), Length(290, false)) << "319 of 320";
    EXPECT_EQ(widthOf(291, small), Length(304, false)) << "320.1: all there is";
    EXPECT_EQ(widthOf(304, small), Length(304, false));
    EXPECT_EQ(widthOf(305, small), Length(304, true));
    EXPECT_EQ(widthOf(2'000'000'000, large), Length(1008, true));
    EXPECT_EQ(widthOf(818, withMargins), Length(818, false));
    EXPECT_EQ(widthOf(819, withMargins), Length(884, false));
    EXPECT_EQ(widthOf(885, withMargins), Length(884, true));
}

TEST(BoxHeight, IsFixedWithATenthToSpareAndEndsAtTheFrame)
{
    EXPECT_EQ(heightOf(182, DisplayArea{{320, 201}, {}}), Length(163, false)) << "the frame does not fit";
    EXPECT_EQ(heightOf(698, large), Length(698, true)) << "767.8 of 768";
    EXPECT_EQ(heightOf(699, large), Length(699, false));
    EXPECT_EQ(heightOf(636, withMargins), Length(636, true)) << "699.6 of 700";
    EXPECT_EQ(heightOf(637, withMargins), Length(637, false));
    EXPECT_EQ(heightOf(2'000'000'000, small), Length(202, false));
    EXPECT_EQ(heightOf(100, small, true), Length(100, false)) << "what wraps may scroll";
}

TEST(BoxPosition, IsTheMiddleOfWhatIsNotKeptFree)
{
    EXPECT_EQ(boxPosition({200, 100}, large), QPoint(404, 315));
    EXPECT_EQ(boxPosition({201, 101}, large), QPoint(403, 314)) << "halves are cut off";
    EXPECT_EQ(boxPosition({304, 202}, small), QPoint(0, 0));
    EXPECT_EQ(boxPosition({200, 100}, withMargins), QPoint(442, 301));
    EXPECT_EQ(boxPosition({884, 662}, withMargins), QPoint(100, 20)) << "the largest box";
    const DisplayArea odd{{320, 240}, {0, 0, 5, 3}};
    EXPECT_EQ(boxPosition({101, 101}, odd), QPoint(101 - 2, 50 - 1)) << "each half is cut off by itself";
}

TEST(SoundArea, AlwaysHasRoomForABox)
{
    constexpr int most = std::numeric_limits<int>::max();
    constexpr int least = std::numeric_limits<int>::min();
    const QSize desktop(1024, 768);
    for (const int odd : {0, -1, 50, 400, most, least}) {
        for (const DisplayArea &asked :
             {DisplayArea{{odd, odd}, {}}, DisplayArea{{320, 240}, {odd, odd, odd, odd}},
              DisplayArea{{320, odd}, {odd, 0, 100, 0}}}) {
            const QSize room = roomForBox(soundArea(asked, desktop));
            EXPECT_GE(room.width(), 100) << odd;
            EXPECT_GE(room.height(), 60) << odd;
            EXPECT_LE(room.width(), 1008) << odd;
            EXPECT_LE(room.height(), 730) << odd;
        }
    }
    EXPECT_EQ(soundArea({{0, 240}, {}}, desktop).size, QSize(1024, 240));
    EXPECT_EQ(soundArea({{320, 240}, {200, 10, 100, 10}}, desktop).keptFree, QMargins(0, 10, 0, 10));
}

} // namespace
