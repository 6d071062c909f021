#include "debugwindow/icons.h"
#include "support/guiapplication.h"

#include <QApplication>
#include <QImage>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <optional>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

const char *const names[] = {"outputon",    "outputoff", "activate", "filter",   "analyze", "filesave",
                             "closedialog", "fileopen",  "settings", "clearlog", "filenew"};
const std::pair<const char *, int> files[] = {{"", 16}, {"@2x", 32}, {"-24", 24}, {"-24@2x", 48}};

QString path(const char *name, const char *file)
{
    return QStringLiteral(":/icons/%1%2.png").arg(QLatin1String(name), QLatin1String(file));
}

double light(const QColor &color)
{
    const auto linear = [](qreal part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

/// 1 for the same lightness, 21 between black and white; from 3 on a sign counts as easy to see.
double contrast(const QColor &one, const QColor &other)
{
    const auto [low, high] = std::minmax({light(one), light(other)}); // copies
    return (high + 0.05) / (low + 0.05);
}

struct Visible
{
    double ofPicture; // what differs clearly from the ground
    double ofDrawing; // the same, of what is drawn at all
};

Visible visible(const QImage &picture, const QColor &ground)
{
    int drawn = 0;
    int clear = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            if (color.alphaF() < 0.5)
                continue; // soft edges
            ++drawn;
            clear += contrast(color, ground) >= 2.8 ? 1 : 0;
        }
    return {double(clear) / (picture.width() * picture.height()), drawn ? double(clear) / drawn : 0};
}

double difference(const QImage &one, const QImage &other)
{
    int different = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            different += one.pixel(x, y) != other.pixel(x, y) ? 1 : 0;
    return double(different) / (one.width() * one.height());
}

TEST(Icons, AreThereInEverySizeAndShowOnLightAndDark)
{
    const IconResource resource;
    for (const char *const name : names)
        for (const auto &[file, pixels] : files) {
            const QImage picture(path(name, file));
            ASSERT_EQ(picture.size(), QSize(pixels, pixels)) << name << file;
            for (const int ground : {0xf0, 0x30}) {
                const Visible share = visible(picture, QColor(ground, ground, ground));
                EXPECT_GE(share.ofPicture, 0.15) << name << file << " on " << ground;
                EXPECT_GE(share.ofDrawing, 0.5) << name << file << " on " << ground;
            }
        }
}

TEST(Icons, DifferFromEachOther)
{
    const IconResource resource;
    for (const auto *one = std::begin(names); one != std::end(names); ++one)
        for (const auto *other = one + 1; other != std::end(names); ++other)
            EXPECT_GE(difference(QImage(path(*one, "")), QImage(path(*other, ""))), 0.25) << *one << *other;
}

TEST(Icons, StayUntilTheLastOfTheirUsersGoes)
{
    const auto areThere = [] { return !QImage(path("outputon", "")).isNull(); };
    std::optional<IconResource> first(std::in_place);
    std::optional<IconResource> second(std::in_place);
    first.reset();
    EXPECT_TRUE(areThere());
    second.reset();
    EXPECT_FALSE(areThere());
    const IconResource again;
    EXPECT_TRUE(areThere());
}

TEST(Icons, BringTheirOwnPictureForEachSizeAndDensity)
{
    const TestApplication<QApplication> application;
    const IconResource resource;
    const QIcon settings = icon("settings");
    for (const auto &[file, pixels] : files) {
        constexpr auto format = QImage::Format_ARGB32_Premultiplied;
        const QImage shown = settings.pixmap(QSize(pixels, pixels)).toImage();
        const QImage drawn(path("settings", file));
        EXPECT_TRUE(shown.convertToFormat(format) == drawn.convertToFormat(format)) << pixels << " pixels";
    }
    EXPECT_TRUE(icon("nonsense").pixmap(16, 16).isNull());
}

} // namespace
