#pragma once

#include "debugwindow/filteredtextbuffer.h"
#include "debugwindow/selection.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <limits>

namespace Zorvan {

/// The selected text, or all rows if nothing is selected: the stored lines with their colour sequences, with
/// "\n" between them. Empty rows before the first text are left out, and all from the first on that would
/// make it too long. Of a line that the ring has written over, only what lies before the next one. Empty
/// without memory.
[[nodiscard]] QString copiedText(const CFilteredTextBuffer &buffer, const Selection &selection,
                                 std::size_t mostCharacters = mostCharactersOfString);

constexpr std::size_t mostBytesOfArray = std::numeric_limits<int>::max() - 64;

/// All lines that are stored, marked or not, oldest first: whole lines in pieces of at most about \a
/// mostBytes, each with "\n" between its lines and none at its end. A longer line is a piece of its own, cut
/// off where an array ends. \a take returns false to stop, and leaves the buffer alone. Without memory no
/// more pieces come.
void forEachPiece(const CFilteredTextBuffer &buffer, std::size_t mostBytes,
                  const std::function<bool(QByteArray piece)> &take);

} // namespace Zorvan
