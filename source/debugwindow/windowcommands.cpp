// What the settings menu of the debug window does.

#include "debugwindow/analyzeractions.h"
#include "debugwindow/debugwindow.h"
#include "debugwindow/handlerreports.h"
#include "debugwindow/protocolwidget.h"
#include "debugwindow/savedlog.h"
#include "debugwindow/settingsmenu.h"
#include "debugwindow/windowgeometry.h"
#include "host/hosthandlers.h"
#include "host/savedconfiguration.h"
#include "host/tablestate.h"
#include "settingsdialog/questions.h"
#include "settingsdialog/rundialog.h"
#include "settingsdialog/settingsdialog.h"

#include <QClipboard>
#include <QFontDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>
#include <QPushButton>

#include <utility>

namespace Zorvan {

namespace {

ClientEntry clientEntry()
{
    if (Debug::isServer() || Debug::isClient())
        return ClientEntry::Absent;
    return Debug::clientsAllowed() ? ClientEntry::Checked : ClientEntry::Unchecked;
}

} // namespace

void DebugWindow::configuration()
{
    const QPointer<DebugWindow> kept(this);
    const unsigned ends = TableState::ends();
    const QPointer<QMenu> menu(new QMenu(this));
    menu->setFont(font());
    fillSettingsMenu(*menu, clientEntry());
    int command = 0;
    {
        const OwnModal modal(*m_reports);
        const QPushButton &button = *m_tools->settings();
        if (const QAction *const chosen = menu->exec(button.mapToGlobal(button.rect().bottomLeft())))
            command = chosen->data().toInt();
    }
    delete menu;
    if (kept && TableState::ends() == ends)
        run(command);
}

void DebugWindow::run(int command)
{
    switch (static_cast<SettingsCommand>(command)) {
    case SettingsCommand::AllowClients:
        Debug::setClientsAllowed(!Debug::clientsAllowed());
        break;
    case SettingsCommand::CopyToClipboard:
        copyToClipboard();
        break;
    case SettingsCommand::SaveToFile:
        saveToFile();
        break;
    case SettingsCommand::SetOutputFont:
        setOutputFont();
        break;
    case SettingsCommand::SetUserInterfaceFont:
        setUserInterfaceFont();
        break;
    case SettingsCommand::MakeDefault:
        makeDefault();
        break;
    case SettingsCommand::ConfigureMessages:
        configureMessages();
        break;
    }
}

void DebugWindow::configureMessages()
{
    if (m_settings == nullptr)
        m_settings = newSettingsDialog();
    const QPointer<SettingsDialog> dialog = m_settings;
    if (dialog->isVisible())
        dialog->refresh(); // it does so by itself only when it appears or becomes active
    if (dialog->isMinimized())
        dialog->showNormal();
    else
        dialog->show();
    if (dialog) {
        dialog->raise();
        dialog->activateWindow();
    }
}

SettingsDialog *DebugWindow::newSettingsDialog()
{
    auto *const dialog = new SettingsDialog(this);
    dialog->setFont(m_fonts.userInterface);
    const auto dress = [](QPushButton &button, const char *iconName, const QString &toolTip) {
        button.setIcon(icon(iconName));
        button.setToolTip(toolTip);
    };
    dress(*dialog->openButton(), "fileopen",
          tr("Loads a previously stored Debug Server output configuration"));
    dress(*dialog->saveButton(), "filesave",
          tr("Saves the current Debug Server output configuration for later use"));
    dress(*dialog->closeButton(), "closedialog", tr("Closes this dialog"));
    dress(*dialog->filterButton(), "filter",
          tr("Sets additional output filter for levels and message content"));
    connect(dialog, &SettingsDialog::makeDefaultRequested, this, &DebugWindow::makeDefault);
    return dialog;
}

/// It is deleted by the event loop, when none of its functions runs any more.
void DebugWindow::discardSettingsDialog()
{
    const QPointer<SettingsDialog> dialog = std::exchange(m_settings, nullptr);
    if (dialog == nullptr)
        return;
    dialog->deleteLater();
    dialog->hide();
}

void DebugWindow::copyToClipboard()
{
    QGuiApplication::clipboard()->setText(m_view->copyText());
}

void DebugWindow::saveToFile()
{
    const std::optional<QString> path = askLogPath();
    if (path && savedlog::write(*path, m_view->copyText()))
        m_savedLog = *path;
}

std::optional<QString> DebugWindow::askLogPath()
{
    const savedlog::Place place = savedlog::startingPlace(m_savedLog);
    questions::FileQuestion question{tr("Save logging as..."), tr("DebugServer Log Files (*.log)"),
                                     QFileDialog::AcceptSave};
    question.folder = place.folder;
    question.name = place.name;
    const OwnModal modal(*m_reports);
    return questions::askForFile(this, question);
}

void DebugWindow::setOutputFont()
{
    if (const std::optional<QFont> chosen = askFont(m_fonts.output)) {
        m_fonts.output = *chosen;
        showFonts();
    }
}

void DebugWindow::setUserInterfaceFont()
{
    if (const std::optional<QFont> chosen = askFont(m_fonts.userInterface)) {
        m_fonts.userInterface = *chosen;
        showFonts();
        discardSettingsDialog(); // the next one has the new font
    }
}

std::optional<QFont> DebugWindow::askFont(const QFont &present)
{
    const OwnModal modal(*m_reports);
    return runDialog(new QFontDialog(present, this),
                     [](const QFontDialog &accepted) { return accepted.selectedFont(); });
}

void DebugWindow::makeDefault()
{
    const QPointer<DebugWindow> kept(this);
    const auto goesOn = [&kept, ends = TableState::ends()] {
        return kept != nullptr && TableState::ends() == ends;
    };
    const QString analysisPlace = host::readString(QStringLiteral("DebugAnalysisWindowGeometry"), QString());
    if (!goesOn())
        return;
    Settings settings;
    settings.emplace_back("DebugServerWindowGeometry", windowgeometry::formatted(place()));
    settings.emplace_back("DebugAnalysisWindowGeometry", m_analyzer->place(analysisPlace));
    addFontSettings(settings, m_fonts);
    settings.emplace_back("DebugServerSavedLog", m_savedLog);
    for (const auto &[key, value] : settings) {
        host::writeString(QString::fromLatin1(key), value);
        if (!goesOn())
            return;
    }
    host::saveConfiguration();
}

QRect DebugWindow::place() const
{
    return windowgeometry::placeOf(*this, m_restoredPlace);
}

} // namespace Zorvan
