#pragma once

#include <QFont>

#include <algorithm>
#include <iterator>

/// Settings hold weights of fonts in the steps of Qt 5, 0 to 99, whichever Qt reads or writes them: a host
/// may change its Qt and keep its settings.
namespace Zorvan::fontweight {

constexpr int normal = 50;
constexpr int heaviest = 99;

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)

struct Step
{
    int stored;
    int ofFont;
};
/// Where both scales have a name, and their ends.
constexpr Step steps[] = {{0, 100},  {12, 200}, {25, 300}, {50, 400}, {57, 500},
                          {63, 600}, {75, 700}, {81, 800}, {87, 900}, {heaviest, 1000}};

/// Weights between two steps keep their share of the way, so that what was read is written again.
inline int converted(int weight, int Step::*from, int Step::*to)
{
    const Step *upper = std::begin(steps) + 1;
    while (weight > upper->*from && upper + 1 != std::end(steps))
        ++upper;
    const Step &lower = upper[-1];
    const double share = static_cast<double>(weight - lower.*from) / (upper->*from - lower.*from);
    return std::max(lower.*to + qRound(share * (upper->*to - lower.*to)), 0);
}

inline int ofFont(int stored)
{
    return converted(stored, &Step::stored, &Step::ofFont);
}

inline int toStore(const QFont &font)
{
    return converted(font.weight(), &Step::ofFont, &Step::stored);
}

#else

inline int ofFont(int stored)
{
    return stored;
}

inline int toStore(const QFont &font)
{
    return font.weight();
}

#endif

} // namespace Zorvan::fontweight
