#include "debugwindow/debugwindow.h"

#include "debugwindow/analysistexts.h"
#include "debugwindow/analyzeractions.h"
#include "debugwindow/handlerreports.h"
#include "debugwindow/protocolwidget.h"
#include "debugwindow/rowcopy.h"
#include "debugwindow/viewcommands.h"
#include "debugwindow/windowgeometry.h"
#include "host/hookkeys.h"
#include "host/hosthandlers.h"
#include "host/outputswitch.h"
#include "leakanalyzer/analysisoutput.h"
#include "settingsdialog/settingsdialog.h"

#include <QAbstractItemView>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <atomic>

namespace Zorvan {

namespace {

constexpr int settingsRefreshMs = 50;

std::atomic<int> s_busyScopes{0};

/// The window appends lines or runs a hook, which may print; it may be gone at the end of the scope.
class BusyScope
{
public:
    BusyScope() { ++s_busyScopes; }
    ~BusyScope() { --s_busyScopes; }
    BusyScope(const BusyScope &) = delete;
    BusyScope &operator=(const BusyScope &) = delete;
};

QRect readPlace()
{
    const QString stored = host::readString(QStringLiteral("DebugServerWindowGeometry"), QString());
    return windowgeometry::placed(stored, windowgeometry::desktop());
}

QString readTitle()
{
    const QString title =
        host::readString(QStringLiteral("windowTitle"), QStringLiteral("Signal Generator Debug Output"));
    return QCoreApplication::translate("Zorvan::DebugWindow", title.toUtf8().constData());
}

bool isReturn(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter)
        && (event.modifiers() & ~Qt::KeypadModifier) == 0;
}

} // namespace

DebugWindow::DebugWindow(const QString &)
    : m_fonts(readWindowFonts())
    , m_maximumLineCount(host::readInteger(QStringLiteral("maxLines"), -1))
    , m_restoredPlace(readPlace())
    , m_reports(new HandlerReports(*this))
    , m_analysisTexts(new AnalysisTexts(this, [this](const std::string &text) { appendOutput(text); }))
    , m_analyzer(new AnalyzerActions(*this, *m_reports))
    , m_tools(new WindowToolBar(this))
    , m_view(new QProtocolWidget(this))
    , m_parameterHistory(*m_tools->parameters())
{
    setAttribute(Qt::WA_QuitOnClose, false); // the host ends with its own windows
    resize(m_restoredPlace.size());
    move(windowgeometry::framePosition(m_restoredPlace));
    setWindowTitle(readTitle());
    auto *const rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(0);
    rows->addWidget(m_tools);
    rows->addWidget(m_view, 1);
    m_view->setAccessibleName(tr("Messages"));
    m_view->buffer().setMaximumLineCount(static_cast<std::uint32_t>(m_maximumLineCount));
    m_view->setFocus(); // a key must not switch the output off
    m_tools->showOutputOff(m_isOutputOff);
    showFonts();
    connectControls();
    updateModes();
    installEventFilter(this);
    restoreFilters();
    analysis::takeOverOutput(this);
}

DebugWindow::~DebugWindow()
{
    analysis::removeOutputHandler(this); // first: other threads may be handing in texts
}

void DebugWindow::connectControls()
{
    connect(m_tools->outputOff(), &QPushButton::clicked, this, &DebugWindow::outputOff);
    connect(m_tools->clearLog(), &QPushButton::clicked, this, &DebugWindow::clear);
    connect(m_tools->activate(), &QPushButton::clicked, this, &DebugWindow::hook);
    connect(m_tools->settings(), &QPushButton::clicked, this, &DebugWindow::configuration);
    connect(m_tools->analyze(), &QPushButton::clicked, this, &DebugWindow::analyzing);
    connect(m_tools->parameters(), &QComboBox::editTextChanged, this, &DebugWindow::typedInput);
    connect(m_tools->parameters(), &QComboBox::textActivated, this, &DebugWindow::enteredInput);
    connect(m_tools->parameters()->lineEdit(), &QLineEdit::selectionChanged, this,
            [this] { m_parameterHistory.selected(); });
    m_tools->parameters()->installEventFilter(this);
    m_tools->parameters()->view()->installEventFilter(this);
    m_settingsTimer.setSingleShot(true);
    connect(&m_settingsTimer, &QTimer::timeout, this, [this] {
        if (m_settings != nullptr && m_settings->isVisible())
            m_settings->refresh();
    });
    m_completionTimer.setSingleShot(true);
    connect(&m_completionTimer, &QTimer::timeout, this, &DebugWindow::timeout);
    connect(m_view, &QProtocolWidget::modalStateChanged, m_reports, &HandlerReports::setModalOpen);
}

void DebugWindow::restoreFilters()
{
    m_savedLog = host::readString(QStringLiteral("DebugServerSavedLog"), QString());
    const QString lines = host::readString(QStringLiteral("DebugServerRegexpFilter"), QString());
    const QString levels = host::readString(QStringLiteral("DebugServerLevelsFilter"), QString());
    Debug::setOutputFilter(lines);
    Debug::setLevelFilter(levels);
}

void DebugWindow::takeIntoUse(bool clientsConnected)
{
    m_locks = ControlLocks();
    m_locks.clientsConnected = clientsConnected;
    updateModes();
    if (!analysis::hasOutputHandler()) // taken away at the end of an earlier run of the library
        analysis::takeOverOutput(this);
}

void DebugWindow::appendOutput(std::string_view lines)
{
    if (m_isOutputOff)
        return;
    const BusyScope busy;
    m_view->appendText(lines);
    m_tools->showLineCount(m_view->buffer().lineCount());
}

void DebugWindow::clearText()
{
    m_view->command(static_cast<int>(ViewCommand::Clear));
    m_tools->showLineCount(m_view->buffer().lineCount());
}

std::uint32_t DebugWindow::lineCount() const
{
    return m_view->buffer().lineCount();
}

void DebugWindow::forEachPiece(std::size_t mostBytes, const std::function<bool(QByteArray piece)> &take) const
{
    Zorvan::forEachPiece(m_view->buffer(), mostBytes, take);
}

void DebugWindow::setOutputOn(bool on)
{
    takeOutput(on);
    host::setOutputEnabled(on);
    Debug::activateHooks("DebugServerSettingsChangedHook", "");
}

void DebugWindow::dropOutput()
{
    takeOutput(false);
    Debug::activateHooks("DebugServerSettingsChangedHook", "");
}

void DebugWindow::takeOutput(bool on)
{
    m_isOutputOff = !on;
    m_tools->showOutputOff(m_isOutputOff);
}

void DebugWindow::refreshHooks()
{
    m_tools->setHooks(host::hookKeys());
}

void DebugWindow::refreshSettings()
{
    if (m_settings != nullptr && !m_settingsTimer.isActive())
        m_settingsTimer.start(settingsRefreshMs);
}

void DebugWindow::hookStarted()
{
    m_locks.hookRuns = true;
    m_tools->setLocks(m_locks);
}

void DebugWindow::closeCompanions()
{
    const QPointer<AnalyzerActions> analyzer(m_analyzer);
    discardSettingsDialog();
    if (analyzer)
        analyzer->hideResults();
}

void DebugWindow::hookDone()
{
    m_locks.hookRuns = false;
    m_tools->setLocks(m_locks);
    m_tools->parameters()->setFocus();
}

void DebugWindow::setClientsConnected(bool connected)
{
    m_locks.clientsConnected = connected;
    m_tools->setLocks(m_locks);
}

void DebugWindow::updateModes()
{
    m_locks.serverMode = Debug::isServer();
    m_locks.clientMode = Debug::isClient();
    m_tools->setLocks(m_locks);
}

void DebugWindow::textOutput(const char *, int, const char *text)
{
    m_analysisTexts->add(text ? text : "");
}

void DebugWindow::summary(int, qint64 totalCycles, qint64, qint64, quint64 earliestStamp, quint64 latestStamp)
{
    m_analyzer->beginReport(totalCycles, earliestStamp, latestStamp);
}

void DebugWindow::tableRow(int, const char *methodName, quint64 reference, int calls, quint64,
                           qint64 totalCycles, qint64 overheadCycles)
{
    m_analyzer->addRow(methodName, reference, calls, totalCycles, overheadCycles);
}

void DebugWindow::tableComplete()
{
    m_analyzer->endReport();
}

bool DebugWindow::isOutputIdle()
{
    return s_busyScopes.load() == 0;
}

void DebugWindow::hook()
{
    const QString parameters = m_tools->parameters()->currentText();
    m_parameterHistory.add(parameters);
    if (!m_tools->hasHooks())
        return;
    const QByteArray key = m_tools->hooks()->currentText().toLatin1();
    const BusyScope busy;
    Debug::activateHooks(key.constData(), parameters.toLatin1().constData()); // may end with this window
}

void DebugWindow::clear()
{
    clearText();
}

void DebugWindow::outputOff()
{
    setOutputOn(m_isOutputOff);
}

void DebugWindow::reset()
{
    m_completionTimer.stop();
    m_parameterHistory.clear();
}

void DebugWindow::analyzing()
{
    const QPushButton &button = *m_tools->analyze();
    m_analyzer->openMenu(button.mapToGlobal(button.rect().bottomLeft()));
}

void DebugWindow::typedInput(const QString &text)
{
    if (m_parameterHistory.typed(text))
        m_completionTimer.start(0);
}

void DebugWindow::enteredInput(const QString &text)
{
    m_parameterHistory.add(text);
}

void DebugWindow::timeout()
{
    m_parameterHistory.complete();
}

bool DebugWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == this)
        return m_reports->report(event);
    if (event->type() == QEvent::KeyPress)
        return filterParameterKey(watched, *static_cast<QKeyEvent *>(event));
    return QWidget::eventFilter(watched, event);
}

/// Return runs the hook: in the field, and in its list with the text that is chosen there.
bool DebugWindow::filterParameterKey(const QObject *watched, const QKeyEvent &event)
{
    if (!isReturn(event))
        return false;
    if (watched != m_tools->parameters()) {
        QMetaObject::invokeMethod(m_tools->activate(), &QPushButton::click, Qt::QueuedConnection);
        return false;
    }
    if (!event.isAutoRepeat())
        m_tools->activate()->click(); // does nothing while it is disabled
    return true;
}

void DebugWindow::closeEvent(QCloseEvent *event)
{
    event->accept();
    Debug::activateHooks("DebugServerWindowClosedHook", "");
}

void DebugWindow::showFonts()
{
    setFont(m_fonts.userInterface);
    m_view->setFont(m_fonts.output);
    m_analyzer->setOutputFont(m_fonts.output);
}

} // namespace Zorvan
