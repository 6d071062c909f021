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
    , outputOff(newButton(this, tr("Output Off"), "outputoff", tr("Stops/Starts window output")))
    , clearLog(newButton(this, tr("Clear Log"), "clearlog", tr("Clears the contents of the console window")))
    , hooks(newSelector(this, tr("Hook")))
    , parameters(newSelector(this, tr("Hook parameters")))
    , activate(newButton(this, tr("activate"), "activate",
                         tr("Executes the selected hook method with parameters")))
    , settings(newButton(this, tr("Settings..."), "settings",
                         tr("Opens the Debug Server output configuration dialog")))
    , analyze(newButton(this, tr("Analyze..."), "analyze", tr("Opens the analyzer menu")))
{
    parameters->setEditable(true);
    parameters->setCompleter(nullptr);
    parameters->setInsertPolicy(QComboBox::NoInsert);
    parameters->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    parameters->setMinimumContentsLength(parameterCharacters);
    auto *const row = new SimpleFlow(this);
    for (QWidget *const control :
         {static_cast<QWidget *>(outputOff), static_cast<QWidget *>(clearLog), static_cast<QWidget *>(hooks),
          static_cast<QWidget *>(parameters), static_cast<QWidget *>(activate),
          static_cast<QWidget *>(settings), static_cast<QWidget *>(analyze)})
        row->addWidget(control);
    setHooks({});
}

void WindowToolBar::setHooks(const QStringList &keys)
{
    const QString selected = hooks->currentText();
    m_hasHooks = !keys.isEmpty();
    hooks->clear();
    hooks->addItems(m_hasHooks ? keys : QStringList(tr("no hooks defined")));
    hooks->setCurrentIndex(qMax(0, hooks->findText(selected, Qt::MatchFixedString | Qt::MatchCaseSensitive)));
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
    outputOff->setIcon(icon(isOff ? "outputon" : "outputoff"));
    outputOff->setAccessibleDescription(isOff ? tr("The output is off") : tr("The output is on"));
}

void WindowToolBar::showLineCount(std::uint32_t count)
{
    clearLog->setToolTip(tr("%1 lines inside log").arg(count));
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
    hooks->setFixedWidth(qMin(widestItem(*hooks) + besideKeyPx, widest));
}

void WindowToolBar::enableControls()
{
    const bool isOurs = !m_locks.clientsConnected;
    outputOff->setEnabled(isOurs && !m_locks.serverMode);
    hooks->setEnabled(isOurs && m_hasHooks);
    parameters->setEnabled(isOurs && !m_locks.serverMode && !m_locks.hookRuns);
    activate->setEnabled(isOurs && m_hasHooks && !m_locks.hookRuns);
    settings->setEnabled(isOurs);
    analyze->setEnabled(false); // the analysis tools have no menu yet
}

} // namespace Zorvan
