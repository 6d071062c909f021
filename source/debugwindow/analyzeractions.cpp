#include "debugwindow/analyzeractions.h"

#include "debugwindow/analysisreports.h"
#include "debugwindow/handlerreports.h"
#include "debugwindow/resultswindow.h"
#include "debugwindow/sourcesdialog.h"
#include "debugwindow/windowgeometry.h"
#include "host/hosthandlers.h"
#include "host/tablestate.h"
#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/methodtiming.h"
#include "settingsdialog/restartmessage.h"
#include "settingsdialog/rundialog.h"

#include <QMenu>
#include <QPointer>
#include <QThread>

namespace Zorvan {

namespace {

constexpr QSize tableSize(760, 320);

QString sourcesKey()
{
    return QStringLiteral("LeakAnalysisSources");
}

int opposite(int state)
{
    return state == 0 ? 1 : 0;
}

QRect readTablePlace()
{
    const QString stored = host::readString(QStringLiteral("DebugAnalysisWindowGeometry"), QString());
    const windowgeometry::Desktop desktop = windowgeometry::desktop();
    return windowgeometry::placed(stored, desktop, windowgeometry::centred(tableSize, desktop));
}

/// Whether an object is still there, and the library has not ended since.
class Watch
{
public:
    explicit Watch(const QObject *object, unsigned ends = TableState::ends())
        : m_object(object)
        , m_ends(ends)
    {}
    [[nodiscard]] bool goesOn() const { return m_object != nullptr && TableState::ends() == m_ends; }

private:
    const QPointer<const QObject> m_object;
    const unsigned m_ends;
};

/// Sets a member of an object that may be deleted meanwhile.
class FlagScope
{
public:
    FlagScope(const QObject *owner, bool &flag)
        : m_owner(owner)
        , m_flag(flag)
    {
        m_flag = true;
    }
    ~FlagScope()
    {
        if (m_owner != nullptr)
            m_flag = false;
    }
    Q_DISABLE_COPY(FlagScope)

private:
    const QPointer<const QObject> m_owner;
    bool &m_flag;
};

} // namespace

AnalyzerActions::AnalyzerActions(QWidget &window, HandlerReports &reports)
    : QObject(&window)
    , m_window(window)
    , m_handlerReports(reports)
    , m_reports(new AnalysisReports(this, [this](AnalysisReport report) { show(std::move(report)); }))
{}

AnalyzerActions::~AnalyzerActions() = default;

void AnalyzerActions::openMenu(const QPoint &position)
{
    const Watch watch(this);
    const QPointer<QMenu> menu(new QMenu(&m_window));
    menu->setFont(m_window.font());
    fillAnalyzerMenu(*menu, analyzerState());
    int command = 0;
    {
        const OwnModal modal(m_handlerReports);
        if (const QAction *const chosen = menu->exec(position))
            command = chosen->data().toInt();
    }
    delete menu;
    if (watch.goesOn())
        run(static_cast<AnalyzerCommand>(command));
}

void AnalyzerActions::run(AnalyzerCommand command)
{
    switch (command) {
    case AnalyzerCommand::TrackLeaks:
        analysis::memoryTrackingEnabled(opposite(analysis::memoryTrackingEnabled(-1)));
        break;
    case AnalyzerCommand::TrackMethods:
        analysis::timeTrackingEnabled(opposite(analysis::timeTrackingEnabled(-1)));
        break;
    case AnalyzerCommand::DumpResults:
        dumpResults();
        break;
    case AnalyzerCommand::EnableTools:
        analysis::toolsEnabled(analyzerState().toolsEnabled ? 0 : 1);
        tellOfRestart();
        break;
    case AnalyzerCommand::AnalyzeStartup:
        analysis::startupAnalysis(analyzerState().startupAnalyzed ? 0 : 1);
        tellOfRestart();
        break;
    case AnalyzerCommand::ClearResults:
        clearResults();
        break;
    case AnalyzerCommand::SelectSources:
        selectSources();
        break;
    }
}

void AnalyzerActions::dumpResults()
{
    const Watch watch(this);
    const AnalyzerState state = analyzerState();
    const QByteArray sources = host::readString(sourcesKey(), QString()).toLatin1();
    if (state.leaksTracked && watch.goesOn())
        analysis::dumpLeaks(sources.constData());
    if (!state.methodsTracked || !watch.goesOn())
        return;
    const FlagScope dumping(this, m_isDumping);
    analysis::dumpTimes(sources.constData(), "");
}

void AnalyzerActions::clearResults()
{
    const AnalyzerState state = analyzerState();
    if (state.methodsTracked && m_table) // or it would look as if the times were still there
        m_table->setReport({});
    if (state.leaksTracked)
        analysis::clearLeaks();
    if (state.methodsTracked)
        analysis::clearTimes();
}

void AnalyzerActions::selectSources()
{
    const Watch watch(this);
    const QString stored = host::readString(sourcesKey(), QString());
    if (!watch.goesOn())
        return;
    const QPointer<SourcesDialog> dialog(new SourcesDialog(stored, &m_window));
    analysis::reportMethods(&dialog->files());
    if (!dialog || !watch.goesOn()) {
        delete dialog;
        return;
    }
    std::optional<QString> chosen;
    {
        const OwnModal modal(m_handlerReports);
        chosen = runDialog(dialog.data(), [](const SourcesDialog &accepted) { return accepted.selection(); });
    }
    if (chosen && watch.goesOn())
        host::writeString(sourcesKey(), *chosen);
}

void AnalyzerActions::tellOfRestart()
{
    const OwnModal modal(m_handlerReports);
    showRestartMessage();
}

void AnalyzerActions::setOutputFont(const QFont &font)
{
    m_outputFont = font;
    if (m_table)
        m_table->setFont(font);
}

QString AnalyzerActions::place(const QString &stored) const
{
    return m_table ? windowgeometry::formatted(m_table->place()) : stored;
}

void AnalyzerActions::hideResults()
{
    m_reports->drop();
    if (m_table)
        m_table->hide();
}

void AnalyzerActions::beginReport(qint64 totalCycles, quint64 earliestStamp, quint64 latestStamp) noexcept
{
    const bool isAskedFor = QThread::currentThread() == thread() && m_isDumping;
    m_reports->begin({totalCycles, earliestStamp, latestStamp, isAskedFor, {}, TableState::ends()});
}

void AnalyzerActions::addRow(const char *methodName, quint64 thread, int calls, qint64 totalCycles,
                             qint64 overheadCycles) noexcept
{
    m_reports->add(methodName, {{}, thread, calls, totalCycles, overheadCycles});
}

void AnalyzerActions::endReport() noexcept
{
    m_reports->complete();
}

void AnalyzerActions::show(AnalysisReport report)
{
    const Watch watch(this, report.ends);
    const bool hasRows = !report.rows.empty();
    const bool isAskedFor = report.isAskedFor;
    if (watch.goesOn() && !m_table && hasRows)
        makeTable();
    if (!watch.goesOn() || !m_table)
        return;
    m_table->setReport(std::move(report));
    if (hasRows && m_window.isVisible())
        bringUp(isAskedFor);
}

/// Not if the host's settings are the end of this object or of the library.
void AnalyzerActions::makeTable()
{
    const Watch watch(this);
    const QRect place = readTablePlace();
    if (!watch.goesOn() || m_table) // by a report that came while the host was asked
        return;
    m_table = std::make_unique<ResultsWindow>(place);
    if (m_outputFont)
        m_table->setFont(*m_outputFont);
}

/// Only whoever asked for the results gives up the keyboard for them. To be shown may be the end of the
/// table, by a filter for events that the host has installed.
void AnalyzerActions::bringUp(bool isAskedFor)
{
    const QPointer<ResultsWindow> table(m_table.get());
    table->setAttribute(Qt::WA_ShowWithoutActivating, !isAskedFor);
    if (isAskedFor)
        table->setWindowState(table->windowState() & ~Qt::WindowMinimized);
    if (table)
        table->show();
    if (!isAskedFor)
        return;
    if (table)
        table->raise();
    if (table)
        table->activateWindow();
}

} // namespace Zorvan
