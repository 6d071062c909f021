#pragma once

class QWidget;

namespace Zorvan {

/// Lets the user choose which levels and which text a line must have to be printed, and sets the filters.
/// False if the user cancelled, or if \a parent is gone. The GUI thread only; runs an event loop.
[[nodiscard]] bool editOutputFilter(QWidget *parent);

} // namespace Zorvan
