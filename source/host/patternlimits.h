#pragma once

#include <QString>

namespace Zorvan {

/// Whether a regular expression may be used at all. Nested deeply, it would overflow the stack of whichever
/// thread prints; its repetitions multiply, and a short text would keep every line waiting.
[[nodiscard]] bool isAffordable(const QString &pattern);

/// Whether it costs so little that it is taken from anybody. The time grows with the square of the line's
/// length: some milliseconds for the worst and a line of a hundred characters.
[[nodiscard]] bool isCheap(const QString &pattern);

} // namespace Zorvan
