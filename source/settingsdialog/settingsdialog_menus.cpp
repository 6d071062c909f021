// The menus of the settings dialog and what their entries do.

#include "host/displayflagkeys.h"
#include "host/hosthandlers.h"
#include "host/tablestate.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "settingsdialog/dialogmenu.h"
#include "settingsdialog/displaytexts.h"
#include "settingsdialog/moduleconfiguration.h"
#include "settingsdialog/questions.h"
#include "settingsdialog/restartmessage.h"
#include "settingsdialog/settingsdialog.h"
#include "ui_configdialog.h"

#include <QContextMenuEvent>
#include <QFileInfo>
#include <QLayout>
#include <QMenu>
#include <QPointer>

namespace Zorvan {

namespace {

constexpr qint64 bytesPerMegabyte = 1'048'576;
constexpr int mostMegabytes = 2047;
constexpr int megabytesPerStep = 10;

bool isLatin1(const QString &text)
{
    return QString::fromLatin1(text.toLatin1()) == text;
}

} // namespace

int SettingsDialog::chosenFrom(const QPoint &globalPosition, const std::function<void(QMenu &)> &fill)
{
    const QPointer<SettingsDialog> kept(this);
    const unsigned ends = TableState::ends();
    const QPointer<QMenu> menu(new QMenu(this));
    menu->setFont(font());
    fill(*menu);
    const QAction *const chosen = menu->exec(globalPosition);
    const int code = chosen == nullptr ? 0 : chosen->data().toInt();
    delete menu;
    return kept && TableState::ends() == ends ? code : 0;
}

void SettingsDialog::openDialogMenu(const QPoint &globalPosition)
{
    const QPointer<SettingsDialog> kept(this);
    const unsigned ends = TableState::ends();
    const DialogMenuState state = presentMenuState(m_isSmallDisplay);
    if (!kept || TableState::ends() != ends)
        return;
    if (const int code = chosenFrom(globalPosition, [&state](QMenu &menu) { fillDialogMenu(menu, state); }))
        command(code);
}

void SettingsDialog::contextMenuEvent(QContextMenuEvent *event)
{
    event->accept();
    openDialogMenu(event->globalPos());
}

void SettingsDialog::levelsContextMenuRequested(const QPoint &position)
{
    openDialogMenu(m_form->messageLevel->mapToGlobal(position));
}

void SettingsDialog::fileContextMenuRequested(const QPoint &position)
{
    if (Debug::isClient()) // the file is the other process's
        return;
    if (const int code = chosenFrom(m_form->fileOutputCheck->mapToGlobal(position), fillFileMenu))
        command(code);
}

void SettingsDialog::customContextMenuSlot(const QPoint &position)
{
    const QPoint place = m_form->classesList->viewport()->mapToGlobal(position);
    const moduleId module = m_module;
    const int code = chosenFrom(place, fillClassesMenu);
    if (code != 0 && m_module == module) // else the classes are those of another one by now
        enableAllClasses(module, static_cast<ClassesCommand>(code) == ClassesCommand::EnableAll);
}

void SettingsDialog::command(int code)
{
    const QPointer<SettingsDialog> kept(this);
    switch (static_cast<DialogCommand>(code)) {
    case DialogCommand::MakeDefault:
        makeDefault();
        break;
    case DialogCommand::SwitchDisplay:
        switchDisplay();
        break;
    case DialogCommand::WithoutWindow:
        toggleWithoutWindow();
        break;
    case DialogCommand::ReleaseAssertions:
        toggleReleaseAssertions();
        break;
    case DialogCommand::OutputFilter:
        setFilter();
        break;
    case DialogCommand::OutputFile:
        chooseOutputFile();
        break;
    case DialogCommand::OutputFileSize:
        chooseOutputFileSize();
        break;
    case DialogCommand::ConsoleOutput:
        toggleFlag(displayflags::consoleOutput, -11);
        break;
    case DialogCommand::ShowThread:
        toggleFlag(displayflags::threadId, -7);
        break;
    case DialogCommand::AllowClear:
        toggleFlag(displayflags::allowProgrammaticClear, -13);
        break;
    }
    if (kept)
        kept->refresh();
}

void SettingsDialog::switchDisplay()
{
    m_isSmallDisplay = !m_isSmallDisplay;
    showDisplayTexts(*this, m_isSmallDisplay);
    for (const QWidget *const part : {m_form->moduleGroupBox, m_form->globalGroupBox})
        part->layout()->activate(); // else the sizes are those of the old texts until the next event
    layout()->activate();
    if (m_isSmallDisplay)
        resize(minimumSizeHint());
    else
        adjustSize();
}

void SettingsDialog::chooseOutputFile()
{
    const QString present = QString::fromLatin1(Debug::getOutputFileName());
    questions::FileQuestion question{tr("Please select Log File"), tr("DebugServer Log Files (*.log)"),
                                     QFileDialog::AcceptSave};
    if (!present.isEmpty()) {
        question.folder = QFileInfo(present).absolutePath();
        question.name = QFileInfo(present).fileName();
    }
    const unsigned ends = TableState::ends();
    const QString path = questions::askForFile(this, question).value_or(QString());
    if (path.isEmpty() || TableState::ends() != ends)
        return;
    if (isLatin1(path))
        Debug::setOutputFileName(path.toLatin1().constData());
    else
        questions::tell(questions::Icon::Warning, tr("output file"),
                        tr("The output file stays the same: the name of the new one has characters "
                           "that are not in Latin-1.\n%1")
                            .arg(path));
}

void SettingsDialog::chooseOutputFileSize()
{
    const qint64 present = Debug::getMaxOutputFileSize() / bytesPerMegabyte;
    const int preset = static_cast<int>(qBound(qint64(0), present, qint64(mostMegabytes)));
    const unsigned ends = TableState::ends();
    const std::optional<int> entered = questions::askForNumber(
        this, tr("Output File Size"), tr("File Size in MB"), preset, {0, mostMegabytes, megabytesPerStep});
    if (entered && TableState::ends() == ends)
        Debug::setMaxOutputFileSize(*entered * bytesPerMegabyte);
}

void SettingsDialog::toggleWithoutWindow()
{
    const unsigned ends = TableState::ends();
    const int toggled = isWithoutWindow() ? 0 : 1;
    if (TableState::ends() == ends)
        host::writeString(QStringLiteral("noWindowOutput"), QString::number(toggled));
    if (TableState::ends() == ends)
        showRestartMessage();
}

void SettingsDialog::toggleReleaseAssertions()
{
    setLowlevelIntegerProperty(static_cast<int>(LowlevelProperty::releaseAssertEnabled),
                               hasReleaseAssertions() ? 0 : 1);
}

void SettingsDialog::saveSettings()
{
    const questions::FileQuestion question{tr("Save configuration as..."),
                                           tr("Debug Server Settings (*.dbgcfg)"), QFileDialog::AcceptSave,
                                           QStringLiteral("dbgcfg")};
    const unsigned ends = TableState::ends();
    const QString path = questions::askForFile(this, question).value_or(QString());
    if (!path.isEmpty() && TableState::ends() == ends)
        moduleconfiguration::save(path);
}

void SettingsDialog::loadSettings()
{
    const questions::FileQuestion question{tr("Load configuration"), tr("Debug Server Settings (*.dbgcfg)")};
    const QPointer<SettingsDialog> kept(this);
    const unsigned ends = TableState::ends();
    const QString path = questions::askForFile(this, question).value_or(QString());
    if (path.isEmpty() || TableState::ends() != ends)
        return;
    const Change change(*this, m_module);
    if (!moduleconfiguration::load(path))
        return;
    if (kept)
        refresh(); // a handler finds what was loaded
    change.announce("DebugServerEnabledClassesChangedHook");
}

} // namespace Zorvan
