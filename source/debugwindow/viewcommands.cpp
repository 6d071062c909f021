#include "debugwindow/viewcommands.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>

namespace Zorvan {

namespace {

constexpr char context[] = "Zorvan::QProtocolWidget"; // of the translations

const char *const searchMenu = QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Search...");
const char *const markersMenu = QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Markers...");
const char *const settingsMenu = QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Settings...");

struct Entry
{
    const char *submenu; ///< null: in the menu itself
    const char *text; ///< null: not in the menu, only a key; a separator if it has none
    ViewCommand command = {};
    int keys = 0; ///< key and modifiers; 0: none
    bool ViewStates::*state = nullptr; ///< shown by a check mark; null: not checkable
};

constexpr Entry separatorIn(const char *submenu)
{
    return {submenu, nullptr};
}

constexpr int ctrl(Qt::Key key)
{
    return static_cast<int>(Qt::CTRL) | key;
}

constexpr int ctrlShift(Qt::Key key)
{
    return static_cast<int>(Qt::SHIFT) | ctrl(key);
}

constexpr int alt(Qt::Key key)
{
    return static_cast<int>(Qt::ALT) | key;
}

/// The menu from top to bottom.
const Entry entries[] = {
    {nullptr, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Clear"), ViewCommand::Clear},
    separatorIn(nullptr),
    {nullptr, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Select All"), ViewCommand::SelectAll,
     ctrl(Qt::Key_A)},
    {nullptr, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Clear Selection"), ViewCommand::ClearSelection},
    {nullptr, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Copy All"), ViewCommand::Copy, ctrl(Qt::Key_C)},
    separatorIn(nullptr),
    {searchMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Find..."), ViewCommand::Find, ctrl(Qt::Key_F)},
    {searchMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Find Next"), ViewCommand::FindNext,
     ctrl(Qt::Key_G)},
    {searchMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Find Previous"), ViewCommand::FindPrevious,
     ctrlShift(Qt::Key_G)},
    {markersMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Add Marker..."), ViewCommand::AddMarker,
     ctrl(Qt::Key_M)},
    {markersMenu, nullptr, ViewCommand::AddMarker, ctrl(Qt::Key_O)},
    {markersMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Remove Marker..."), ViewCommand::RemoveMarker,
     ctrl(Qt::Key_R)},
    {markersMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Clear Markers"), ViewCommand::ClearMarkers},
    separatorIn(markersMenu),
    {markersMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Load Markers..."), ViewCommand::LoadMarkers,
     ctrlShift(Qt::Key_O)},
    {markersMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Save Markers..."), ViewCommand::SaveMarkers,
     ctrlShift(Qt::Key_S)},
    {nullptr, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Goto Line..."), ViewCommand::GotoLine,
     ctrl(Qt::Key_L)},
    separatorIn(nullptr),
    {settingsMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Show Line Numbers"),
     ViewCommand::ShowLineNumbers, alt(Qt::Key_L), &ViewStates::lineNumbers},
    {settingsMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Auto Scroll"), ViewCommand::AutoScroll,
     alt(Qt::Key_S), &ViewStates::autoScroll},
    {settingsMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Marked Output Only"),
     ViewCommand::MarkedOutputOnly, alt(Qt::Key_M), &ViewStates::markedOutputOnly},
    {settingsMenu, QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Mark Extra Lines"),
     ViewCommand::MarkExtraLines, alt(Qt::Key_E)},
};

/// The shortcut stands in the text: a QAction that knew it might take the key from the view.
QString textOf(const Entry &entry, const ViewStates &states)
{
    const char *const text = entry.command == ViewCommand::Copy && states.hasSelection
        ? QT_TRANSLATE_NOOP("Zorvan::QProtocolWidget", "Copy Selection")
        : entry.text;
    QString result = QCoreApplication::translate(context, text);
    if (entry.keys != 0)
        result += QLatin1Char('\t') + QKeySequence(entry.keys).toString(QKeySequence::NativeText);
    return result;
}

void addEntry(QMenu &menu, const Entry &entry, const ViewStates &states)
{
    if (entry.text == nullptr) {
        if (entry.keys == 0)
            menu.addSeparator();
        return;
    }
    QAction *const action = menu.addAction(textOf(entry, states));
    action->setData(static_cast<int>(entry.command));
    if (entry.state != nullptr) {
        action->setCheckable(true);
        action->setChecked(states.*entry.state);
    }
}

std::optional<ViewCommand> commandOf(int keys)
{
    for (const Entry &entry : entries) {
        if (entry.keys == keys)
            return entry.command;
    }
    return std::nullopt;
}

} // namespace

void fillViewMenu(QMenu &menu, const ViewStates &states)
{
    QMenu *submenu = nullptr;
    const char *submenuTitle = nullptr;
    for (const Entry &entry : entries) {
        if (entry.submenu != nullptr && entry.submenu != submenuTitle)
            submenu = menu.addMenu(QCoreApplication::translate(context, entry.submenu));
        submenuTitle = entry.submenu;
        addEntry(entry.submenu != nullptr ? *submenu : menu, entry, states);
    }
}

std::optional<ViewCommand> commandOfKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers pressed = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (pressed != Qt::ControlModifier && pressed != Qt::AltModifier)
        return std::nullopt; // no modifier, or the two that stand for AltGr
    const int keys = event.key() | static_cast<int>(pressed);
    if (event.modifiers().testFlag(Qt::ShiftModifier)) {
        if (const auto command = commandOf(keys | static_cast<int>(Qt::SHIFT)))
            return command;
    }
    return commandOf(keys); // only some keys mean something else with Shift
}

} // namespace Zorvan
