#include "panel/autopilot.h"

#include "panel/debugwindowuser.h"
#include "panel/panel.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>

#include <cstdio>
#include <utility>

namespace SignalGenerator {

namespace {

constexpr std::chrono::milliseconds tickInterval{20};
constexpr std::chrono::seconds patience{20};

// Every step's way to say "at once".
bool always()
{
    return true;
}

template <typename Widget>
Widget *find(const Panel &panel, const char *name)
{
    return panel.findChild<Widget *>(QLatin1String(name));
}

QString textOf(const Panel &panel, const char *label)
{
    return find<QLabel>(panel, label)->text();
}

bool click(const Panel &panel, const char *button)
{
    find<QAbstractButton>(panel, button)->click();
    return true;
}

bool enter(const Panel &panel, const char *entry, double value)
{
    find<QDoubleSpinBox>(panel, entry)->setValue(value);
    return true;
}

// The button with this text in any box that is shown.
QAbstractButton *boxButton(const Panel &panel, const QString &text)
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window == &panel || !window->isVisible())
            continue;
        for (QAbstractButton *const button : window->findChildren<QAbstractButton *>())
            if (button->isVisible() && button->text().remove(QLatin1Char('&')) == text)
                return button;
    }
    return nullptr;
}

bool answer(const Panel &panel, const QString &text)
{
    QAbstractButton *const button = boxButton(panel, text);
    if (button != nullptr)
        button->click();
    return button != nullptr;
}

bool chooseFile(const QString &path)
{
    auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
    auto *const name = dialog ? dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")) : nullptr;
    if (name == nullptr)
        return false;
    name->setText(path); // selectFile() leaves a name alone that has the focus
    static_cast<QDialog *>(dialog)->accept();
    return true;
}

bool trigger(const Panel &panel, const QString &key, const QString &parameter)
{
    find<QComboBox>(panel, "hook")->setCurrentText(key);
    find<QLineEdit>(panel, "hookParameter")->setText(parameter);
    return click(panel, "trigger");
}

void say(const QString &text)
{
    std::printf("autopilot: %s\n", text.toLocal8Bit().constData());
    std::fflush(stdout);
}

} // namespace

Autopilot::Autopilot(Panel &panel, const QString &script, const QString &picture)
    : m_panel(panel)
{
    if (!script.isEmpty())
        addScriptSteps(script);
    addEntrySteps();
    addHookSteps();
    addSelfTestSteps();
    addDebugWindowSteps(QFileInfo(picture).path());
    addEnd(picture);
    m_start = std::chrono::steady_clock::now();
    m_timer.callOnTimeout(this, [this] { tick(); });
    m_timer.start(tickInterval);
}

void Autopilot::addStep(const QString &text, std::function<bool()> act, std::function<bool()> happened)
{
    m_steps.push_back({text, std::move(act), std::move(happened)});
}

void Autopilot::addEntrySteps()
{
    addStep(
        QStringLiteral("enters 2400 MHz and -12.5 dBm"),
        [this] { return enter(m_panel, "frequency", 2400) && enter(m_panel, "level", -12.5); },
        [this] {
            return textOf(m_panel, "frequencyReading") == QLatin1String("2.400 000 000 GHz")
                && textOf(m_panel, "levelReading") == QLatin1String("-12.50 dBm");
        });
    addStep(
        QStringLiteral("switches AM and the output on"),
        [this] { return click(m_panel, "amDepthOn") && click(m_panel, "output"); },
        [this] { return find<QAbstractButton>(m_panel, "output")->text() == QLatin1String("RF ON"); });
    addStep(
        QStringLiteral("enters 99 GHz, which the instrument refuses"),
        [this] { return enter(m_panel, "frequency", 99000); },
        [this] { return textOf(m_panel, "message").startsWith(QLatin1String("Error -222")); });
}

void Autopilot::addHookSteps()
{
    addStep(
        QStringLiteral("triggers SG_setFrequency with \"433.92 MHz\""),
        [this] { return trigger(m_panel, QStringLiteral("SG_setFrequency"), QStringLiteral("433.92 MHz")); },
        [this] { return textOf(m_panel, "frequencyReading") == QLatin1String("433.920 000 MHz"); });
    addStep(
        QStringLiteral("triggers SG_dumpState"),
        [this] { return trigger(m_panel, QStringLiteral("SG_dumpState"), QString()); }, always);
}

void Autopilot::addScriptSteps(const QString &script)
{
    addStep(
        QStringLiteral("presses \"Load script...\""), [this] { return click(m_panel, "script"); }, always);
    addStep(
        QStringLiteral("chooses %1 in the file selection").arg(script),
        [path = QFileInfo(script).absoluteFilePath()] { return chooseFile(path); },
        [this] { return textOf(m_panel, "message").endsWith(QLatin1String("lines are done")); });
}

void Autopilot::addSelfTestSteps()
{
    addStep(
        QStringLiteral("presses \"Self test...\""), [this] { return click(m_panel, "selfTest"); }, always);
    addStep(
        QStringLiteral("answers the question with Yes"),
        [this] { return answer(m_panel, QStringLiteral("Yes")); },
        [this] { return textOf(m_panel, "message") == QLatin1String("Self test: passed"); });
    addStep(
        QStringLiteral("closes the result with OK"), [this] { return answer(m_panel, QStringLiteral("OK")); },
        [this] { return boxButton(m_panel, QStringLiteral("OK")) == nullptr; });
}

void Autopilot::addQuestionStep(Qt::Key key, const QString &text)
{
    addStep(
        QStringLiteral("presses Ctrl+%1").arg(QLatin1Char(static_cast<char>(key))),
        [key] { return DebugWindowUser::press(key); }, DebugWindowUser::isAsking);
    addStep(
        QStringLiteral("enters \"%1\"").arg(text), [text] { return DebugWindowUser::enter(text); },
        [] { return !DebugWindowUser::isAsking(); });
}

void Autopilot::addDebugWindowSteps(const QString &folder)
{
    addStep(QStringLiteral("closes the debug window"), DebugWindowUser::close,
            [] { return !DebugWindowUser::isShown(); });
    addStep(
        QStringLiteral("presses \"Debug window\""), [this] { return click(m_panel, "debugWindow"); },
        DebugWindowUser::isShown);
    addQuestionStep(Qt::Key_M, QStringLiteral("oscillator"));
    addQuestionStep(Qt::Key_M, QStringLiteral("attenuator"));
    addQuestionStep(Qt::Key_F, QStringLiteral("433.92"));
    const QString picture = folder + QLatin1String("/debugwindow.png");
    const QString text = folder + QLatin1String("/debugwindow.txt");
    addStep(
        QStringLiteral("saves a picture of it in %1, its text in %2").arg(picture, text),
        [picture, text] {
            say(QStringLiteral("reads in it: %1").arg(DebugWindowUser::lineCount()));
            return DebugWindowUser::savePicture(picture) && DebugWindowUser::saveText(text);
        },
        always);
}

void Autopilot::addEnd(const QString &picture)
{
    addStep(
        QStringLiteral("saves a picture of the panel in %1").arg(picture),
        [this, picture] { return m_panel.grab().save(picture); }, always);
    addStep(
        QStringLiteral("closes the panel"), [this] { return m_panel.close(); }, always);
}

void Autopilot::tick()
{
    if (m_steps.empty())
        return;
    if (std::chrono::steady_clock::now() - m_start > patience)
        return fail();
    const Step &step = m_steps.front();
    if (!m_acted) {
        m_acted = step.act();
        if (m_acted)
            say(step.text);
    }
    if (!m_acted || !step.happened())
        return;
    m_acted = false;
    m_steps.pop_front();
    m_start = std::chrono::steady_clock::now();
}

void Autopilot::fail()
{
    say(QStringLiteral("FAILED: %1").arg(m_steps.front().text));
    m_timer.stop();
    QApplication::exit(1);
}

} // namespace SignalGenerator
