#include "panel/panel.h"

#include "instrument.h"
#include "panel/controls.h"
#include "panel/display.h"
#include "panel/hooks.h"
#include "panel/operatortasks.h"
#include "panel/remotecontrol.h"

#include <zorvan/debug.h>

#include <QCloseEvent>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <chrono>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

constexpr std::chrono::milliseconds refreshInterval{100};

} // namespace

Panel::Panel(const Instrument &instrument, RemoteControl &remote, OperatorTasks &tasks)
    : m_instrument(instrument)
    , m_remote(remote)
    , m_tasks(tasks)
{
    setWindowTitle(tr("Signal Generator SG4000"));
    setLocale(QLocale::c()); // a decimal point everywhere, as in commands
    m_display = new Display(this);
    m_controls = new Controls(this);

    auto *const layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize); // a front panel does not stretch
    layout->addWidget(m_display);
    layout->addWidget(m_controls);
    layout->addWidget(makeHookBar());
    layout->addWidget(makeActionBar());

    connectRemoteControl();
    connectTasks();
    connect(&m_refresh, &QTimer::timeout, this, &Panel::follow);
    m_refresh.start(refreshInterval);
    say(tr("Ready"));
    follow();
}

QPushButton *Panel::makeButton(const QString &text, const char *name)
{
    auto *const button = new QPushButton(text, this);
    button->setObjectName(QLatin1String(name));
    button->setMinimumWidth(button->sizeHint().width() + 16);
    return button;
}

QLabel *Panel::makeMessageLine()
{
    auto *const line = new QLabel(this);
    line->setObjectName(QStringLiteral("message"));
    line->setFrameShape(QFrame::Panel);
    line->setFrameShadow(QFrame::Sunken);
    line->setMargin(4);
    line->setTextFormat(Qt::PlainText);
    line->setTextInteractionFlags(Qt::TextSelectableByMouse);
    line->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long text widens no panel
    return line;
}

QWidget *Panel::makeActionBar()
{
    auto *const bar = new QWidget(this);
    auto *const layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    m_preset = makeButton(tr("P&reset"), "preset");
    QPushButton *const debugWindow = makeButton(tr("&Debug window"), "debugWindow");
    m_script = makeButton(tr("L&oad script..."), "script");
    m_selfTest = makeButton(tr("&Self test..."), "selfTest");
    m_message = makeMessageLine();
    layout->addWidget(m_message, 1);
    for (QPushButton *const button : {m_preset, m_script, m_selfTest, debugWindow})
        layout->addWidget(button);
    connect(m_preset, &QPushButton::clicked, this, [this] { send("SYST:PRES"); });
    connect(m_script, &QPushButton::clicked, this, &Panel::scriptClicked);
    connect(m_selfTest, &QPushButton::clicked, this, &Panel::selfTestClicked);
    connect(debugWindow, &QPushButton::clicked, this, [] { Debug::showDebugWindow(); });
    return bar;
}

QWidget *Panel::makeHookBar()
{
    auto *const group = new QGroupBox(tr("Hooks"), this);
    auto *const layout = new QHBoxLayout(group);
    m_hook = new QComboBox(group);
    m_hook->setObjectName(QStringLiteral("hook"));
    int count = 0;
    const QString *const keys = Debug::getHooks(count); // the host's own and those of the library
    for (int i = 0; i < count; ++i)
        m_hook->addItem(keys[i]);
    m_hook->setCurrentText(QLatin1String(Hooks::setFrequency));
    m_hookParameter = new QLineEdit(group);
    m_hookParameter->setObjectName(QStringLiteral("hookParameter"));
    m_hookParameter->setPlaceholderText(tr("Parameter, such as 433.92 MHz"));
    QPushButton *const trigger = makeButton(tr("&Trigger"), "trigger");
    layout->addWidget(m_hook);
    layout->addWidget(m_hookParameter, 1);
    layout->addWidget(trigger);
    connect(trigger, &QPushButton::clicked, this, &Panel::triggerHook);
    connect(m_hookParameter, &QLineEdit::returnPressed, this, &Panel::triggerHook);
    return group;
}

void Panel::connectRemoteControl()
{
    connect(m_controls, &Controls::commandEntered, this, &Panel::send);
    connect(&m_remote, &RemoteControl::done, this, &Panel::follow);
    connect(&m_remote, &RemoteControl::errorsTaken, this, &Panel::sayError);
    connect(&m_remote, &RemoteControl::scriptAdvanced, this,
            [this](int line, int lines) { say(tr("Script: line %1 of %2").arg(line).arg(lines)); });
    connect(&m_remote, &RemoteControl::scriptEnded, this, [this](const QString &result) {
        say(result);
        enableControls();
    });
}

void Panel::connectTasks()
{
    connect(&m_tasks, &OperatorTasks::scriptChosen, this, [this](const QString &path) {
        setTaskRunning(false);
        if (!path.isEmpty())
            runScript(path);
    });
    connect(&m_tasks, &OperatorTasks::selfTestEnded, this, [this](const QString &result) {
        setTaskRunning(false);
        say(result);
    });
}

void Panel::send(const QByteArray &line)
{
    say(QString::fromLatin1(line));
    m_remote.send(line.toStdString());
}

void Panel::runScript(const QString &path)
{
    m_scriptFolder = QFileInfo(path).path();
    m_remote.startScript(path);
    enableControls();
}

void Panel::follow()
{
    const Status status = m_instrument.status();
    const bool remoteControlled = m_remote.scriptRuns() || m_taskRuns;
    m_display->follow(status, {remoteControlled, m_errorShown});
    if (m_remote.isBusy())
        return; // the instrument does not have what the user has entered yet
    m_controls->follow(status.settings);
    if (status.errors > 0 && !remoteControlled)
        m_remote.takeErrors(); // a script asks for its errors itself
}

void Panel::scriptClicked()
{
    if (m_remote.scriptRuns())
        return m_remote.stopScript();
    setTaskRunning(true);
    m_tasks.chooseScript(m_scriptFolder);
}

void Panel::selfTestClicked()
{
    setTaskRunning(true);
    say(tr("Self test"));
    m_tasks.startSelfTest();
}

void Panel::triggerHook()
{
    say(tr("Hook %1").arg(m_hook->currentText()));
    Debug::activateHooks(m_hook->currentText().toLatin1().constData(),
                         m_hookParameter->text().toLatin1().constData());
}

void Panel::setTaskRunning(bool running)
{
    m_taskRuns = running;
    enableControls();
}

void Panel::enableControls()
{
    const bool scriptRuns = m_remote.scriptRuns();
    const bool local = !scriptRuns && !m_taskRuns;
    m_controls->setEnabled(local);
    m_preset->setEnabled(local);
    m_selfTest->setEnabled(local);
    m_script->setEnabled(!m_taskRuns);
    m_script->setText(scriptRuns ? tr("St&op script") : tr("L&oad script..."));
    follow();
}

void Panel::say(const QString &text)
{
    m_errorShown = false;
    m_message->setPalette(QPalette());
    m_message->setText(text);
    m_message->setToolTip(text); // of a text that is too long for its place
}

void Panel::sayError(const QString &text)
{
    m_errorShown = true;
    QPalette palette;
    palette.setColor(QPalette::WindowText, QColor(0xb0, 0x1e, 0x1e));
    m_message->setPalette(palette);
    m_message->setText(tr("Error %1").arg(text));
    m_message->setToolTip(m_message->text());
}

void Panel::closeEvent(QCloseEvent *event)
{
    m_tasks.closeResult(); // does not stay behind without its panel
    QWidget::closeEvent(event);
    Q_EMIT closed();
}

} // namespace SignalGenerator
