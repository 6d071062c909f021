#include "panel/panelsession.h"

#include "console.h"
#include "debugsession.h"
#include "faults.h"
#include "instrument.h"
#include "options.h"
#include "panel/autopilot.h"
#include "panel/hooks.h"
#include "panel/operatortasks.h"
#include "panel/panel.h"
#include "panel/panelmodule.h"
#include "panel/remotecontrol.h"

#include <QApplication>
#include <QDir>

#include <clocale>
#include <memory>

namespace SignalGenerator {

namespace {

QString fileName(const std::string &name)
{
    return QString::fromLocal8Bit(name.c_str());
}

// Each object needs those before it, and is gone before they go.
int runPanel(const Options &options, Instrument &instrument, Console &console)
{
    const Zorvan::moduleId module = createPanelModule();
    RemoteControl remote(instrument, console);
    OperatorTasks tasks(remote, module);
    Hooks hooks(instrument, remote, module);
    Panel panel(instrument, remote, tasks);
    panel.setScriptFolder(QDir::currentPath());
    // Windows of the library may be open besides the panel, so it is not always the last one.
    QObject::connect(&panel, &Panel::closed, qApp, &QApplication::quit);
    panel.show();
    std::unique_ptr<Autopilot> autopilot;
    if (!options.picture.empty())
        autopilot = std::make_unique<Autopilot>(panel, fileName(options.script), fileName(options.picture));
    else if (!options.script.empty())
        panel.runScript(fileName(options.script));
    return QApplication::exec();
}

int runInstrument(const Options &options, Traffic &traffic)
{
    Instrument instrument;
    Console console(instrument);
    const int result = runPanel(options, instrument, console);
    traffic = console.traffic(); // no thread uses the console any more
    return result;
}

} // namespace

bool displayIsThere()
{
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

int runPanelSession(const Options &options)
{
    int count = 1;
    char name[] = "signalgenerator";
    char *arguments[] = {name, nullptr};
    // The robot knows the dialogs of Qt, not those of the desktop.
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs, !options.picture.empty());
    // The application object first: the library finds it at its start, and ends before it goes.
    const QApplication application(count, arguments);
    setThreadName("gui");
    std::setlocale(LC_NUMERIC, "C"); // QApplication took the user's; numbers in debug lines keep their point
    const DebugSession session(fileName(options.settings), MessageBoxes::Allowed, makeCollector(options));
    const FaultHooks faultHooks;
    Traffic traffic;
    const int result = runInstrument(options, traffic);
    printSummary(traffic, session.services().tappedLines());
    return result;
}

} // namespace SignalGenerator
