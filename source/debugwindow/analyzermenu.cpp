#include "debugwindow/analyzermenu.h"

#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/methodtiming.h"

#include <QCoreApplication>
#include <QMenu>

namespace Zorvan {

namespace {

enum class Needs {
    Nothing, ///< can be chosen without the tools
    Tools, ///< cannot
};

QAction *addEntry(QMenu &menu, AnalyzerCommand command, const char *text, bool isEnabled)
{
    QAction *const action = menu.addAction(QCoreApplication::translate("Zorvan::AnalyzerMenu", text));
    action->setData(static_cast<int>(command));
    action->setEnabled(isEnabled);
    return action;
}

void addSwitch(QMenu &menu, AnalyzerCommand command, const char *text, bool isOn, const AnalyzerState &state,
               Needs needs)
{
    QAction *const action = addEntry(menu, command, text, needs == Needs::Nothing || state.toolsEnabled);
    action->setCheckable(command == AnalyzerCommand::EnableTools || state.toolsEnabled);
    action->setChecked(action->isCheckable() && isOn);
}

} // namespace

AnalyzerState analyzerState()
{
    AnalyzerState state;
    state.toolsEnabled = analysis::toolsEnabled(-1) == 1;
    state.startupAnalyzed = analysis::startupAnalysis(-1) == 1;
    state.leaksTracked = analysis::memoryTrackingEnabled(-1) != 0;
    state.methodsTracked = analysis::timeTrackingEnabled(-1) != 0;
    return state;
}

void fillAnalyzerMenu(QMenu &menu, const AnalyzerState &state)
{
    addSwitch(menu, AnalyzerCommand::TrackLeaks,
              QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Tracking Memory Leaks"), state.leaksTracked, state,
              Needs::Tools);
    addSwitch(menu, AnalyzerCommand::TrackMethods,
              QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Tracking Method Execution"), state.methodsTracked,
              state, Needs::Tools);
    menu.addSeparator();
    addEntry(menu, AnalyzerCommand::DumpResults, QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Dump Results..."),
             state.toolsEnabled);
    addEntry(menu, AnalyzerCommand::SelectSources,
             QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Select Sources..."), state.toolsEnabled);
    addEntry(menu, AnalyzerCommand::ClearResults,
             QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Clear Results..."), state.toolsEnabled);
    menu.addSeparator();
    addSwitch(menu, AnalyzerCommand::EnableTools,
              QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Enable Analysis Tools"), state.toolsEnabled, state,
              Needs::Nothing);
    addSwitch(menu, AnalyzerCommand::AnalyzeStartup,
              QT_TRANSLATE_NOOP("Zorvan::AnalyzerMenu", "Analysis During Startup"), state.startupAnalyzed,
              state, Needs::Nothing);
}

} // namespace Zorvan
