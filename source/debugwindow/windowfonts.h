#pragma once

#include <QFont>

#include <utility>
#include <vector>

namespace Zorvan {

/// The fonts of the debug window and of the windows that belong to it.
struct WindowFonts
{
    QFont output; ///< of the messages
    QFont userInterface; ///< of everything else
};

/// From the host's settings; what makes no sense there is as if it were not stored. May run host code.
[[nodiscard]] WindowFonts readWindowFonts();

using Settings = std::vector<std::pair<const char *, QString>>;

/// Appends the keys and values that readWindowFonts() takes back.
void addFontSettings(Settings &settings, const WindowFonts &fonts);

} // namespace Zorvan
