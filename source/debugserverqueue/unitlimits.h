#pragma once

#include <QString>

namespace Zorvan {

/// The beginning of a unit, without the first document type or other "<!" declaration, or the first element
/// with more than 100 attributes, and all that follows. No command needs either: declarations define
/// entities, which make a small text huge, and reading many attributes takes a time that grows with the
/// square of their number.
[[nodiscard]] QString harmlessPart(const QString &unit);

} // namespace Zorvan
