#pragma once

class QMenu;

namespace Zorvan {

/// What the menus of the settings dialog can do. The numbers are the data of their entries.
enum class DialogCommand : int {
    MakeDefault = 4096,
    SwitchDisplay = 4097,
    WithoutWindow = 4098,
    ReleaseAssertions = 4099,
    OutputFilter = 4112,
    OutputFile = 8192,
    OutputFileSize = 8193,
    ConsoleOutput = 12288,
    ShowThread = 12289,
    AllowClear = 12290,
};

/// What a menu of the class list does with all classes of the module shown.
enum class ClassesCommand : int {
    EnableAll = 1,
    DisableAll = 2,
};

/// On what the entries of the dialog's menu depend.
struct DialogMenuState
{
    bool isSmallDisplay = false;
    bool isClient = false; ///< the lines come from another process, whose files and windows are its own
    bool hasFilter = false; ///< of levels or of text
    int displayFlags = 0;
    bool isWithoutWindow = false; ///< what the next start does, not this one
    bool hasReleaseAssertions = false;
};

/// The present state. Reads the host's settings, which may end the library.
[[nodiscard]] DialogMenuState presentMenuState(bool isSmallDisplay);
/// Whether the next start of the host comes without debug window. Reads the host's settings.
[[nodiscard]] bool isWithoutWindow();
[[nodiscard]] bool hasReleaseAssertions();

void fillDialogMenu(QMenu &menu, const DialogMenuState &state);
void fillFileMenu(QMenu &menu);
void fillClassesMenu(QMenu &menu);

} // namespace Zorvan
