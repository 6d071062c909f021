#include "commands.h"

#include <zorvan/debug.h>

namespace SignalGenerator {

namespace {

using Zorvan::Debug;

constexpr int highestModule = 99;

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

} // namespace

// The debug output itself by remote control: which modules print, what, and what their lines show.
void addDiagnosticCommands(ScpiParser &parser)
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
    parser.addQuery("DIAGnostic:DEBug:LEVel", oneParameter, [](const Parameters &p) {
        return quoted(Debug::getEnabledMessageLevel(moduleOf(p[0])));
    });
    parser.addQuery("DIAGnostic:DEBug:CLASses", oneParameter, [](const Parameters &p) {
        return quoted(Debug::getEnabledMessageClasses(moduleOf(p[0])));
    });
    parser.addQuery("DIAGnostic:DEBug:SETTings", noParameters,
                    [](const Parameters &) { return quoted(Debug::getEnabledSettings()); });
}

} // namespace SignalGenerator
