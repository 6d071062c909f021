#include "analysisreport.h"
#include "console.h"
#include "debugsession.h"
#include "faults.h"
#include "instrument.h"
#include "options.h"
#include "panel/panelsession.h"

#include <cstdio>
#include <fstream>
#include <iostream>

using namespace SignalGenerator;

namespace {

// No application object is made, so the library prints its lines on the standard output.
void runHeadlessSession(const Options &options, std::istream &script)
{
    setThreadName("command");
    const DebugSession session(QString::fromLocal8Bit(options.settings.c_str()), MessageBoxes::Refused,
                               makeCollector(options));
    const FaultHooks faultHooks;
    const AnalysisReport analysis;
    Traffic traffic;
    {
        Instrument instrument;
        traffic = Console(instrument).run(script);
    }
    AnalysisReport::print(); // what the instrument has not given back by now is lost
    printSummary(traffic, session.services().tappedLines());
}

bool wantsPanel(const Options &options)
{
    if (options.headless || options.script == "-")
        return false;
    if (!displayIsThere())
        std::fputs("signalgenerator: no display, running without the panel as with --headless\n", stderr);
    return displayIsThere();
}

int run(const Options &options)
{
    if (!options.analysis.empty()) {
        switchAnalysis(options.analysis == "on");
        return 0;
    }
    const bool fromInput = options.script.empty() || options.script == "-";
    std::ifstream file;
    if (!fromInput) {
        file.open(options.script);
        if (!file) {
            std::fprintf(stderr, "signalgenerator: cannot open %s\n", options.script.c_str());
            return 1;
        }
    }
    if (wantsPanel(options))
        return runPanelSession(options);
    runHeadlessSession(options, fromInput ? std::cin : file);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    const bool valid = parseOptions(argc, argv, options);
    if (!valid || options.help) {
        std::fputs(usage, valid ? stdout : stderr);
        return valid ? 0 : 1;
    }
    writeHistoryOnFault();
    // Before and after the session there is no debug output yet: the system log takes the message.
    Zorvan::gyxLog("main.cpp", __LINE__, "signal generator starts\n");
    const int result = run(options);
    Zorvan::gyxLog("main.cpp", __LINE__, "signal generator has ended\n");
    return result;
}
