#include "console.h"
#include "debugsession.h"
#include "instrument.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>

using namespace SignalGenerator;

namespace {

constexpr const char *usage =
    "Usage: signalgenerator [--settings FILE.ini] [SCRIPT]\n"
    "Simulates a signal generator under remote control.\n"
    "  SCRIPT      file with one command line per line; \"-\" or nothing: standard input\n"
    "  --settings  settings of the debug output, group DebugServer\n";

struct Options
{
    const char *script = "-";
    const char *settings = "";
    bool help = false;
};

bool parse(int count, char **arguments, Options &options)
{
    bool scriptGiven = false;
    for (int i = 1; i < count; ++i) {
        if (std::strcmp(arguments[i], "--help") == 0) {
            options.help = true;
        } else if (std::strcmp(arguments[i], "--settings") == 0 && i + 1 < count) {
            options.settings = arguments[++i];
        } else if ((arguments[i][0] == '-' && arguments[i][1] != '\0') || scriptGiven) {
            return false;
        } else {
            options.script = arguments[i];
            scriptGiven = true;
        }
    }
    return true;
}

Traffic runInstrument(std::istream &script)
{
    Instrument instrument;
    return Console(instrument).run(script);
}

// No application object is made, so the library prints its lines on the standard output.
void runSession(const char *settings, std::istream &script)
{
    const DebugSession session(QString::fromLocal8Bit(settings));
    const Traffic traffic = runInstrument(script);
    std::fprintf(stderr, "signalgenerator: %d command lines, %d replies, %llu lines through the line tap\n",
                 traffic.commandLines, traffic.replies,
                 static_cast<unsigned long long>(session.services().tappedLines()));
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    const bool valid = parse(argc, argv, options);
    if (!valid || options.help) {
        std::fputs(usage, valid ? stdout : stderr);
        return valid ? 0 : 1;
    }
    const bool fromInput = std::strcmp(options.script, "-") == 0;
    std::ifstream file;
    if (!fromInput) {
        file.open(options.script);
        if (!file) {
            std::fprintf(stderr, "signalgenerator: cannot open %s\n", options.script);
            return 1;
        }
    }
    setThreadName("command");
    // Before and after the session there is no debug output yet: the system log takes the message.
    Zorvan::gyxLog("main.cpp", __LINE__, "signal generator starts\n");
    runSession(options.settings, fromInput ? std::cin : file);
    Zorvan::gyxLog("main.cpp", __LINE__, "signal generator has ended\n");
    return 0;
}
