#pragma once

class QMenu;

namespace Zorvan {

/// What the settings menu of the debug window can do. The numbers are the data of its entries.
enum class SettingsCommand : int {
    ConfigureMessages = 4096,
    SetOutputFont = 4128,
    SetUserInterfaceFont = 4144,
    MakeDefault = 4160,
    CopyToClipboard = 4176,
    SaveToFile = 4192,
    AllowClients = 4352,
};

/// Who may connect is a question only for a process that neither is watched by another one nor watches one.
enum class ClientEntry {
    Absent,
    Unchecked,
    Checked,
};

void fillSettingsMenu(QMenu &menu, ClientEntry clients);

} // namespace Zorvan
