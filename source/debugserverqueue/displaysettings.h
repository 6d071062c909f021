#pragma once

#include "debugserverqueue/boxlayout.h"

#include <QString>

namespace Zorvan {

/// The display that message boxes are laid out for, and their font.
struct DisplaySettings
{
    DisplayArea area;
    QString fontFamily;
    int fontSizePt = 0;
    int fontWeight = 0; ///< as stored, see fontweight
};

/// Whether a display has room for large letters, icons and gaps.
[[nodiscard]] bool isWide(const DisplayArea &area);

/// Reads the host's settings; what is not set comes from the desktop. GUI thread.
[[nodiscard]] DisplaySettings readDisplaySettings();

} // namespace Zorvan
