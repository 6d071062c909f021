#pragma once

#include "debugwindow/icons.h"
#include "debugwindow/parameterhistory.h"
#include "debugwindow/windowfonts.h"
#include "debugwindow/windowtoolbar.h"

#include <zorvan/debug.h>

#include <QByteArray>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>
#include <string_view>

namespace Zorvan {

class AnalysisTexts;
class AnalyzerActions;
class HandlerReports;
class QProtocolWidget;
class SettingsDialog;

/// The window in which a person watches the host: its messages, its hooks, and the switches of the debug
/// output. Settings come from the host's store when it is made and go back on "Make Default".
///
/// The GUI thread only, but for the analysis output, which any thread may hand in. A host callback, a dialog
/// or a menu may lead to the end of the library and of this window.
class DebugWindow : public QWidget, public IAnalysisOutputInterface
{
    Q_OBJECT

public:
    /// \a name is not shown; the title comes from the settings.
    explicit DebugWindow(const QString &name);
    ~DebugWindow() override;

    /// \name For the queue
    /// @{

    /// For a window that a queue begins to use; nothing is left of an earlier one.
    void takeIntoUse(bool clientsConnected);
    /// Shows a batch of Latin-1 lines, "\n" between them, or drops it while the output is off.
    void appendOutput(std::string_view lines);
    void clearText();
    [[nodiscard]] std::uint32_t lineCount() const;
    /// All lines, also those that only marked output hides, in Latin-1 with "\n" between them: as one text if
    /// it is not longer than \a mostBytes, otherwise in pieces. \a take returns false if it wants no more.
    void forEachPiece(std::size_t mostBytes, const std::function<bool(QByteArray piece)> &take) const;
    /// Switches the output on or off; what it was does not matter.
    void setOutputOn(bool on);
    /// The window shows no more lines; the other outputs stay as they are.
    void dropOutput();
    /// Fills the hook selector anew.
    void refreshHooks();
    /// Lets the settings dialog, if it is on the screen, show the present modules, classes and levels. Soon,
    /// so that a host that makes many modules is not held up.
    void refreshSettings();
    /// While a hook with a thread of its own runs, none can be started from here; afterwards its field has
    /// the keyboard again.
    void hookStarted();
    void hookDone();
    /// While remote clients take the output, only the log can be cleared here.
    void setClientsConnected(bool connected);
    /// Reads server and client mode again.
    void updateModes();
    /// At the end of the library: takes the windows that belong to this one from the screen.
    void closeCompanions();
    /// @}

    void textOutput(const char *source, int line, const char *text) override;
    void summary(int records, qint64 totalCycles, qint64 reserved, qint64 calls, quint64 earliestStamp,
                 quint64 latestStamp) override;
    void tableRow(int row, const char *methodName, quint64 reference, int calls, quint64 startStamp,
                  qint64 totalCycles, qint64 overheadCycles) override;
    void tableComplete() override;

    /// Whether no window appends lines or runs a hook at this moment. Any thread.
    [[nodiscard]] static bool isOutputIdle();

    Q_SLOT void hook();
    Q_SLOT void makeDefault();
    Q_SLOT void clear();
    Q_SLOT void outputOff();
    Q_SLOT void reset();
    Q_SLOT void configuration();
    Q_SLOT void analyzing();
    Q_SLOT void typedInput(const QString &text);
    Q_SLOT void enteredInput(const QString &text);
    Q_SLOT void timeout();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void connectControls();
    void restoreFilters();
    void showFonts();
    [[nodiscard]] bool filterParameterKey(const QObject *watched, const QKeyEvent &event);

    void run(int command);
    void configureMessages();
    [[nodiscard]] SettingsDialog *newSettingsDialog();
    void takeOutput(bool on);
    void discardSettingsDialog();
    void copyToClipboard();
    void saveToFile();
    void setOutputFont();
    void setUserInterfaceFont();
    // Nothing if the user cancelled, or if this window is gone.
    [[nodiscard]] std::optional<QString> askLogPath();
    [[nodiscard]] std::optional<QFont> askFont(const QFont &present);
    [[nodiscard]] QRect place() const;

    const IconResource m_icons; // before the controls that show them
    WindowFonts m_fonts;
    const int m_maximumLineCount;
    const QRect m_restoredPlace;
    QString m_savedLog;
    HandlerReports *const m_reports;
    AnalysisTexts *const m_analysisTexts;
    AnalyzerActions *const m_analyzer;
    WindowToolBar *const m_tools;
    QProtocolWidget *const m_view;
    ParameterHistory m_parameterHistory;
    QPointer<SettingsDialog> m_settings; // made when it is first asked for
    QTimer m_settingsTimer;
    QTimer m_completionTimer;
    ControlLocks m_locks;
    bool m_isOutputOff = false;
};

} // namespace Zorvan
