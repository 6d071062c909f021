#pragma once

#include <QRegExp>
#include <QString>

namespace Zorvan {

/// Whether a regular expression may be used at all. QRegExp multiplies repetitions: a short text may keep
/// every line waiting, or take all memory. The worst that may be used takes some tenth of a second for a line
/// of a hundred characters, and grows at least with the square of its length.
[[nodiscard]] bool isAffordable(const QString &pattern);

/// Whether it costs so little that it is taken from anybody: about half as much.
[[nodiscard]] bool isCheap(const QString &pattern);

/// The expression that \a pattern stands for, or an invalid one with the reason. QRegExp must not see an
/// invalid \a pattern itself: if a look-ahead has an error in it, its contents are read once more for each
/// look-ahead around it, and a repetition goes by another count.
[[nodiscard]] QRegExp expressionOf(const QString &pattern);

} // namespace Zorvan
