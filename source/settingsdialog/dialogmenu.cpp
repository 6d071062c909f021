#include "settingsdialog/dialogmenu.h"

#include "host/displayflagkeys.h"
#include "host/hosthandlers.h"
#include "lowlevelfunctions/lowlevelproperties.h"

#include <zorvan/debug.h>

#include <QCoreApplication>
#include <QMenu>

namespace Zorvan {

namespace {

QString menuText(const char *text)
{
    return QCoreApplication::translate("Zorvan::SettingsDialogMenu", text);
}

template <typename Command>
QAction *add(QMenu &menu, Command command, const char *text)
{
    QAction *const action = menu.addAction(menuText(text));
    action->setData(static_cast<int>(command));
    return action;
}

void addCheckable(QMenu &menu, DialogCommand command, const char *text, bool isChecked)
{
    QAction *const action = add(menu, command, text);
    action->setCheckable(true);
    action->setChecked(isChecked);
}

void addFilter(QMenu &menu, const DialogMenuState &state)
{
    addCheckable(menu, DialogCommand::OutputFilter,
                 QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "set output filter..."), state.hasFilter);
}

void addMoreOptions(QMenu &menu, const DialogMenuState &state)
{
    QMenu &more = *menu.addMenu(menuText(QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "more options...")));
    more.setFont(menu.font());
    const auto isSet = [&state](displayflags::Flag flag) {
        return (static_cast<unsigned>(state.displayFlags) & flag) != 0;
    };
    addFilter(more, state);
    more.addSeparator();
    addCheckable(more, DialogCommand::ConsoleOutput,
                 QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "output to console"),
                 isSet(displayflags::consoleOutput));
    addCheckable(more, DialogCommand::ShowThread,
                 QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "show thread"),
                 isSet(displayflags::threadId));
    addCheckable(more, DialogCommand::AllowClear,
                 QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "enable Debug::clear()"),
                 isSet(displayflags::allowProgrammaticClear));
}

void addFileAndDisplay(QMenu &menu, bool isSmallDisplay)
{
    add(menu, DialogCommand::OutputFile, QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "output file..."));
    add(menu, DialogCommand::OutputFileSize,
        QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "output file size..."));
    menu.addSeparator();
    add(menu, DialogCommand::SwitchDisplay,
        isSmallDisplay ? QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "normal display...")
                       : QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "small display..."));
}

void addNextStart(QMenu &menu, const DialogMenuState &state)
{
    menu.addSeparator();
    addCheckable(menu, DialogCommand::WithoutWindow,
                 QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "without window"), state.isWithoutWindow);
    addCheckable(menu, DialogCommand::ReleaseAssertions,
                 QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "release assertions"),
                 state.hasReleaseAssertions);
}

} // namespace

DialogMenuState presentMenuState(bool isSmallDisplay)
{
    DialogMenuState state;
    state.isSmallDisplay = isSmallDisplay;
    state.isClient = Debug::isClient();
    state.hasFilter = !Debug::getLevelFilter().isEmpty() || !Debug::getOutputFilter().isEmpty();
    state.displayFlags = Debug::getDisplayFlags();
    state.isWithoutWindow = isWithoutWindow();
    state.hasReleaseAssertions = hasReleaseAssertions();
    return state;
}

bool isWithoutWindow()
{
    return host::readInteger(QStringLiteral("noWindowOutput"), 0) == 1;
}

bool hasReleaseAssertions()
{
    return lowlevelProperty(LowlevelProperty::releaseAssertEnabled, 0) != 0;
}

void fillDialogMenu(QMenu &menu, const DialogMenuState &state)
{
    add(menu, DialogCommand::MakeDefault, QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "make default"));
    menu.addSeparator();
    if (!state.isClient)
        addFileAndDisplay(menu, state.isSmallDisplay);
    if (state.isSmallDisplay)
        addMoreOptions(menu, state);
    else
        addFilter(menu, state);
    if (!state.isClient)
        addNextStart(menu, state);
}

void fillFileMenu(QMenu &menu)
{
    add(menu, DialogCommand::OutputFile, QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "select file..."));
    menu.addSeparator();
    add(menu, DialogCommand::OutputFileSize,
        QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "set file size..."));
    menu.addSeparator();
}

void fillClassesMenu(QMenu &menu)
{
    add(menu, ClassesCommand::EnableAll, QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "enable all..."));
    add(menu, ClassesCommand::DisableAll, QT_TRANSLATE_NOOP("Zorvan::SettingsDialogMenu", "disable all..."));
}

} // namespace Zorvan
