#pragma once

#include <Qt>

#include <optional>

class QKeyEvent;
class QMenu;

namespace Zorvan {

/// What the view can be told to do; the numbers are those of QProtocolWidget::command().
enum class ViewCommand : int {
    Clear = 1001,
    Copy = 1010,
    SelectAll = 1040,
    ClearSelection = 1050,
    Find = 1100,
    FindNext = 1110,
    FindPrevious = 1120,
    GotoLine = 1130,
    AddMarker = 2000,
    ClearMarkers = 2001,
    RemoveMarker = 2002,
    SaveMarkers = 2003,
    LoadMarkers = 2004,
    ShowLineNumbers = 2100,
    AutoScroll = 2101,
    MarkedOutputOnly = 2102,
    MarkExtraLines = 2103,
};

/// The states of the view that its menu shows.
struct ViewStates
{
    bool hasSelection = false;
    bool lineNumbers = false;
    bool autoScroll = false;
    bool markedOutputOnly = false;
};

/// Fills the context menu. Each action's data is the number of its command; its shortcut is text only, the
/// view's key handler has the keys.
void fillViewMenu(QMenu &menu, const ViewStates &states);

/// The command that a key stands for, if any.
[[nodiscard]] std::optional<ViewCommand> commandOfKey(const QKeyEvent &event);

} // namespace Zorvan
