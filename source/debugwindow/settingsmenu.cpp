#include "debugwindow/settingsmenu.h"

#include <QCoreApplication>
#include <QMenu>

namespace Zorvan {

namespace {

struct Entry
{
    SettingsCommand command;
    const char *text;
    bool beginsGroup = false;
};

constexpr Entry entries[] = {
    {SettingsCommand::ConfigureMessages, QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Configure Messages...")},
    {SettingsCommand::AllowClients, QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Allow Client Connections"),
     true},
    {SettingsCommand::CopyToClipboard, QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Copy to Clipboard..."),
     true},
    {SettingsCommand::SaveToFile, QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Save to File...")},
    {SettingsCommand::SetOutputFont, QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Set Output Font..."), true},
    {SettingsCommand::SetUserInterfaceFont,
     QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Set User Interface Font...")},
    {SettingsCommand::MakeDefault, QT_TRANSLATE_NOOP("Zorvan::SettingsMenu", "Make Default")},
};

} // namespace

void fillSettingsMenu(QMenu &menu, ClientEntry clients)
{
    for (const Entry &entry : entries) {
        const bool isClientEntry = entry.command == SettingsCommand::AllowClients;
        if (isClientEntry && clients == ClientEntry::Absent)
            continue;
        if (entry.beginsGroup)
            menu.addSeparator();
        QAction *const action =
            menu.addAction(QCoreApplication::translate("Zorvan::SettingsMenu", entry.text));
        action->setData(static_cast<int>(entry.command));
        action->setCheckable(isClientEntry);
        action->setChecked(isClientEntry && clients == ClientEntry::Checked);
    }
}

} // namespace Zorvan
