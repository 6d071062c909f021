#include "debugwindow/icons.h"
#include "support/guiapplication.h"

#include <QApplication>
#include <QImage>

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
    for (const char *const name : names)
        for (const auto &[file, pixels] : files) {
            constexpr auto format = QImage::Format_ARGB32_Premultiplied;
            const QImage drawn(path(name, file));
            ASSERT_EQ(drawn.size(), QSize(pixels, pixels)) << name << file;
#if QT_VERSION_MAJOR >= 6 // takes a picture for double density only there
            const int density = QLatin1String(file).endsWith(QLatin1String("@2x")) ? 2 : 1;
            const QImage shown = icon(name).pixmap(drawn.size() / density, density).toImage();
#else
            const QImage shown = icon(name).pixmap(drawn.size()).toImage();
#endif
            EXPECT_TRUE(shown.convertToFormat(format) == drawn.convertToFormat(format)) << name << file;
        }
    EXPECT_TRUE(icon("nonsense").pixmap(16, 16).isNull());
}

} // namespace
