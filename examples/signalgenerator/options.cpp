#include "options.h"

#include "syslogsocket.h"

namespace SignalGenerator {

const char *const usage =
    "Usage: signalgenerator [--headless] [--settings FILE.ini] [SCRIPT]\n"
    "Simulates a signal generator with a front panel and remote control.\n"
    "  SCRIPT      file with one command line per line: the panel runs it at once\n"
    "  --headless  no panel: runs SCRIPT, or standard input without one, and ends; so does \"-\", which\n"
    "              stands for standard input, and so does a machine without a display\n"
    "  --settings  settings of the debug output, group DebugServer\n"
    "  --autopilot PICTURE.png\n"
    "              drives the panel by itself, loads SCRIPT, saves a picture of the panel and ends; beside\n"
    "              it come debugwindow.png, a picture of the debug window, and debugwindow.txt, its text\n"
    "  --syslog HOST:PORT [--name NAME]\n"
    "              forwards every line of the debug output to a syslog collector over TCP; NAME is the\n"
    "              instrument's name there, that of the machine without it\n"
    "  --analysis on|off\n"
    "              switches leak tracking and method timing on or off from the next start on, and ends;\n"
    "              a session without the panel reports at its end what they have found\n";

namespace {

// The place of the value that belongs to an option; null: it has none of this name.
std::string *valueOf(const std::string &option, Options &options)
{
    if (option == "--settings")
        return &options.settings;
    if (option == "--analysis")
        return &options.analysis;
    if (option == "--syslog")
        return &options.collector;
    if (option == "--name")
        return &options.name;
    return option == "--autopilot" ? &options.picture : nullptr;
}

bool fitTogether(const Options &options)
{
    const bool panelPossible = !options.headless && options.script != "-";
    const bool switchKnown =
        options.analysis.empty() || options.analysis == "on" || options.analysis == "off";
    SyslogAddress ignored;
    const bool collectorFits =
        options.collector.empty() ? options.name.empty() : parseSyslogAddress(options.collector, ignored);
    return collectorFits && (options.picture.empty() || panelPossible) && switchKnown;
}

bool isOption(const std::string &argument)
{
    return argument.size() > 1 && argument[0] == '-';
}

} // namespace

bool parseOptions(int count, const char *const *arguments, Options &options)
{
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        std::string *const value = valueOf(argument, options);
        if (value != nullptr && i + 1 < count)
            *value = arguments[++i];
        else if (argument == "--headless")
            options.headless = true;
        else if (argument == "--help")
            options.help = true;
        else if (isOption(argument) || argument.empty() || !options.script.empty())
            return false;
        else
            options.script = argument;
    }
    return fitTogether(options);
}

} // namespace SignalGenerator
