#pragma once

#include <QFileInfo>
#include <QString>

namespace Zorvan {

/// Whether the path names a file, or nothing yet: opening a pipe to write waits for somebody who reads.
[[nodiscard]] inline bool canBeWritten(const QString &path)
{
    const QFileInfo place(path);
    return !path.isEmpty() && (!place.exists() || place.isFile());
}

} // namespace Zorvan
