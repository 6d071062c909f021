#pragma once

#include <QString>

namespace Zorvan {

/// Whether a regular expression may be used at all. Nested deeply, it would overflow the stack of whichever
/// thread prints; its repetitions multiply, and a short text would keep every line waiting.
[[nodiscard]] bool isAffordable(const QString &pattern);

} // namespace Zorvan
