#pragma once

#include <QApplication>
#include <QDir>
#include <QWidget>

#include <cstdio>

/// What the programs that draw windows for people to look at have in common. QT_SCALE_FACTOR=2 in the
/// environment draws for a display of double density.
namespace Zorvan::looks {

constexpr int light = 239; // lightness of the ground
constexpr int dark = 53;

inline void setGround(int lightness)
{
    QApplication::setPalette(QColor::fromHsv(0, 0, lightness));
}

inline bool save(QWidget &widget, const QDir &folder, const QString &name)
{
    QApplication::processEvents();
    std::printf("%-28s %4d x %4d\n", qPrintable(name), widget.width(), widget.height());
    return widget.grab().save(folder.filePath(name));
}

/// For main(): calls \a draw with the folder that is the program's only argument. The exit code is 0 if it
/// returns true.
template <typename Draw>
int drawInto(int argc, char **argv, Draw draw)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 2 || !QDir().mkpath(arguments.at(1))) {
        std::fprintf(stderr, "usage: %s FOLDER\n", qPrintable(arguments.at(0)));
        return 2;
    }
    QApplication::setStyle(QStringLiteral("fusion")); // the same on every desktop
    return draw(QDir(arguments.at(1))) ? 0 : 1;
}

/// Draws each of \a samples; false if one could not be saved.
template <typename Samples, typename Draw>
bool drawAll(const Samples &samples, Draw draw)
{
    bool isComplete = true;
    for (const auto &sample : samples)
        isComplete = draw(sample) && isComplete;
    return isComplete;
}

} // namespace Zorvan::looks
