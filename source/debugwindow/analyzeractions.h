#pragma once

#include "debugwindow/analyzermenu.h"

#include <QFont>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

class QPoint;
class QWidget;

namespace Zorvan {

class AnalysisReports;
class HandlerReports;
class ResultsWindow;
struct AnalysisReport;

/// What the debug window does with the analysis tools: the menu of its button, and the table of results.
///
/// The GUI thread only, but for the rows of a report, which any thread may hand in. A menu, a dialog, a
/// message box or an output handler may lead to the end of the library and of the window, and of this object
/// with it.
class AnalyzerActions : public QObject
{
    Q_OBJECT

public:
    /// A part of \a window. The geometry of the table comes from the host's settings when it is first shown.
    AnalyzerActions(QWidget &window, HandlerReports &reports);
    ~AnalyzerActions() override;

    /// Lets the user choose from the menu, whose top left corner is at \a position of the screen, and does
    /// it.
    void openMenu(const QPoint &position);
    /// Does what an entry of the menu says.
    void run(AnalyzerCommand command);

    /// Of the table, also of one that is made later.
    void setOutputFont(const QFont &font);
    /// The table's geometry as it is to be stored; \a stored while there has been no table.
    [[nodiscard]] QString place(const QString &stored) const;
    /// Takes the table from the screen. Its results stay, reports that are still on their way do not.
    void hideResults();

    /// \name A report, see IAnalysisOutputInterface. Any thread; each makes a report of its own.
    /// @{
    void beginReport(qint64 totalCycles, quint64 earliestStamp, quint64 latestStamp) noexcept;
    void addRow(const char *methodName, quint64 thread, int calls, qint64 totalCycles,
                qint64 overheadCycles) noexcept;
    void endReport() noexcept;
    /// @}

private:
    void dumpResults();
    void clearResults();
    void selectSources();
    void tellOfRestart();
    void show(AnalysisReport report);
    void makeTable();
    void bringUp(bool isAskedFor);

    QWidget &m_window;
    HandlerReports &m_handlerReports;
    AnalysisReports *const m_reports;
    std::unique_ptr<ResultsWindow> m_table; // since the first report with rows
    std::optional<QFont> m_outputFont;
    bool m_isDumping = false; // for the user, in the GUI thread
};

} // namespace Zorvan
