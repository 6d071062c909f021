#include "burst.h"
#include "commands.h"
#include "settingtimes.h"

#include <zorvan/debug.h>

namespace SignalGenerator {

namespace {

using Zorvan::Debug;

constexpr int highestModule = 99;
constexpr int longestBurst = 100'000'000;

QString latin1(const Parameter &parameter)
{
    return QString::fromLatin1(textOf(parameter).c_str());
}

std::string quoted(const QString &text)
{
    return '"' + text.toLatin1().toStdString() + '"';
}

Zorvan::moduleId moduleOf(const Parameter &parameter)
{
    return integerOf(parameter, 0, highestModule);
}

// Which modules print, what, and what their lines show.
void addOutputCommands(ScpiParser &parser)
{
    parser.addSetting("DIAGnostic:DEBug:LEVel", twoParameters,
                      [](const Parameters &p) { Debug::enableLevel(moduleOf(p[0]), latin1(p[1])); });
    parser.addSetting("DIAGnostic:DEBug:CLASses", twoParameters,
                      [](const Parameters &p) { Debug::enableClasses(moduleOf(p[0]), latin1(p[1])); });
    parser.addSetting("DIAGnostic:DEBug:DEFault", oneParameter,
                      [](const Parameters &p) { Debug::makeCurrentSettingsDefault(moduleOf(p[0])); });
    parser.addSetting("DIAGnostic:DEBug:SETTings", oneParameter,
                      [](const Parameters &p) { Debug::enableSettings(latin1(p[0])); });
    parser.addSetting("DIAGnostic:DEBug:FILTer", oneParameter,
                      [](const Parameters &p) { Debug::setOutputFilter(latin1(p[0])); });
    parser.addSetting("DIAGnostic:DEBug:BURSt", twoParameters, [](const Parameters &p) {
        printBurst(integerOf(p[0], 0, longestBurst), integerOf(p[1], 0, longestBurst));
    });
    parser.addQuery("DIAGnostic:DEBug:LEVel", oneParameter, [](const Parameters &p) {
        return quoted(Debug::getEnabledMessageLevel(moduleOf(p[0])));
    });
    parser.addQuery("DIAGnostic:DEBug:CLASses", oneParameter, [](const Parameters &p) {
        return quoted(Debug::getEnabledMessageClasses(moduleOf(p[0])));
    });
    parser.addQuery("DIAGnostic:DEBug:SETTings", noParameters,
                    [](const Parameters &) { return quoted(Debug::getEnabledSettings()); });
}

} // namespace

// The library's services by remote control: its output, hooks, the times of a setting, a leak to be found.
void addDiagnosticCommands(ScpiParser &parser, const Parts &parts)
{
    addOutputCommands(parser);
    parser.addSetting("DIAGnostic:HOOK", twoParameters, [](const Parameters &p) {
        Debug::activateHooks(textOf(p[0]).c_str(), textOf(p[1]).c_str());
    });
    parser.addSetting("DIAGnostic:TIME:ARM", noParameters,
                      [parts](const Parameters &) { parts.kernel.timeNextSetting(); });
    parser.addQuery("DIAGnostic:TIME", noParameters, [](const Parameters &) { return settingTimes(); });
    parser.addSetting("DIAGnostic:FAULt:LEAK", oneParameter,
                      [parts](const Parameters &p) { parts.hardware.setLeaking(switchOf(p[0])); });
}

} // namespace SignalGenerator
