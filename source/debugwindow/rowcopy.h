#pragma once

#include "debugwindow/filteredtextbuffer.h"
#include "debugwindow/selection.h"

#include <QByteArray>
#include <QString>

#include <limits>

namespace Zorvan {

/// The selected text, or all rows if nothing is selected: the stored lines with their colour sequences, with
/// "\n" between them. Empty rows before the first text are left out, and all from the first on that would
/// make it too long.
[[nodiscard]] QString copiedText(const CFilteredTextBuffer &buffer, const Selection &selection,
                                 std::size_t mostCharacters = mostCharactersOfString);

constexpr std::size_t mostBytesOfArray = std::numeric_limits<int>::max() - 64;

/// All lines that are stored, marked or not, oldest first, with "\n" between them.
[[nodiscard]] QByteArray allLines(const CFilteredTextBuffer &buffer,
                                  std::size_t mostBytes = mostBytesOfArray);

} // namespace Zorvan
