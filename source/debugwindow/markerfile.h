#pragma once

#include <QString>

namespace Zorvan::markerfile {

/// \a path with ".dbgfilt" behind it unless it ends so; an empty path stays empty.
[[nodiscard]] QString withSuffix(const QString &path);

/// Writes one line of Latin-1. A file that cannot be written is left alone.
void save(const QString &path, const QString &markers);

/// The first line as it stands, its line feed included, at most 4,094 characters of it. Empty if the file
/// cannot be read or has nothing in it.
[[nodiscard]] QString load(const QString &path);

} // namespace Zorvan::markerfile
