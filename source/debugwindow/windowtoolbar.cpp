#include "debugwindow/windowtoolbar.h"

#include "debugwindow/icons.h"
#include "debugwindow/simpleflow.h"
#include "debugwindow/windowgeometry.h"

#include <QComboBox>
#include <QEvent>
#include <QPushButton>

namespace Zorvan {

namespace {

constexpr int besideKeyPx = 30; // frame and arrow of the selector
constexpr int parameterCharacters = 18;

QPushButton *newButton(QWidget *parent, const QString &text, const char *iconName, const QString &toolTip)
{
    auto *const button = new QPushButton(icon(iconName), text, parent);
    button->setToolTip(toolTip);
    button->setAccessibleName(text);
    return button;
}

QComboBox *newSelector(QWidget *parent, const QString &name)
{
    auto *const selector = new QComboBox(parent);
    selector->setAccessibleName(name);
    return selector;
}

int widestItem(const QComboBox &selector)
{
    int width = 0;
    for (int i = 0; i < selector.count(); ++i)
        width = qMax(width, selector.fontMetrics().horizontalAdvance(selector.itemText(i)));
    return width;
}

} // namespace

WindowToolBar::WindowToolBar(QWidget *parent)
    : QWidget(parent)
    , m_outputOff(newButton(this, tr("Output Off"), "outputoff", tr("Stops/Starts window output")))
    , m_clearLog(
          newButton(this, tr("Clear Log"), "clearlog", tr("Clears the contents of the console window")))
    , m_hooks(newSelector(this, tr("Hook")))
    , m_parameters(newSelector(this, tr("Hook parameters")))
    , m_activate(newButton(this, tr("activate"), "activate",
                           tr("Executes the selected hook method with parameters")))
    , m_settings(newButton(this, tr("Settings..."), "settings",
                           tr("Opens the Debug Server output configuration dialog")))
    , m_analyze(newButton(this, tr("Analyze..."), "analyze", tr("Opens the analyzer menu")))
{
    m_parameters->setEditable(true);
    m_parameters->setCompleter(nullptr);
    m_parameters->setInsertPolicy(QComboBox::NoInsert);
    m_parameters->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_parameters->setMinimumContentsLength(parameterCharacters);
    auto *const row = new SimpleFlow(this);
    for (QWidget *const control : {static_cast<QWidget *>(m_outputOff), static_cast<QWidget *>(m_clearLog),
                                   static_cast<QWidget *>(m_hooks), static_cast<QWidget *>(m_parameters),
                                   static_cast<QWidget *>(m_activate), static_cast<QWidget *>(m_settings),
                                   static_cast<QWidget *>(m_analyze)})
        row->addWidget(control);
    setHooks({});
}

void WindowToolBar::setHooks(const QStringList &keys)
{
    const QString selected = m_hooks->currentText();
    m_hasHooks = !keys.isEmpty();
    m_hooks->clear();
    m_hooks->addItems(m_hasHooks ? keys : QStringList(tr("no hooks defined")));
    m_hooks->setCurrentIndex(
        qMax(0, m_hooks->findText(selected, Qt::MatchFixedString | Qt::MatchCaseSensitive)));
    fitHooks();
    enableControls();
}

void WindowToolBar::setLocks(const ControlLocks &locks)
{
    m_locks = locks;
    enableControls();
}

void WindowToolBar::showOutputOff(bool isOff)
{
    m_outputOff->setIcon(icon(isOff ? "outputon" : "outputoff"));
    m_outputOff->setAccessibleDescription(isOff ? tr("The output is off") : tr("The output is on"));
}

void WindowToolBar::showLineCount(std::uint32_t count)
{
    m_clearLog->setToolTip(tr("%1 lines inside log").arg(count));
}

void WindowToolBar::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        fitHooks();
    QWidget::changeEvent(event);
}

/// A host's key may be longer than any display is wide.
void WindowToolBar::fitHooks()
{
    const int widest = windowgeometry::defaultStrip(windowgeometry::desktop()).width();
    m_hooks->setFixedWidth(qMin(widestItem(*m_hooks) + besideKeyPx, widest));
}

void WindowToolBar::enableControls()
{
    const bool isOurs = !m_locks.clientsConnected;
    m_outputOff->setEnabled(isOurs && !m_locks.serverMode);
    m_hooks->setEnabled(isOurs && m_hasHooks);
    m_parameters->setEnabled(isOurs && !m_locks.serverMode && !m_locks.hookRuns);
    m_activate->setEnabled(isOurs && m_hasHooks && !m_locks.hookRuns);
    m_settings->setEnabled(isOurs);
    m_analyze->setEnabled(isOurs && !m_locks.serverMode && !m_locks.clientMode);
}

} // namespace Zorvan
