#include "commands.h"

#include <charconv>
#include <cmath>

namespace SignalGenerator {

namespace {

void waitUntilDone(const Parts &parts)
{
    parts.sequencer.waitUntilDone();
    parts.kernel.waitUntilSettled();
}

void reset(const Parts &parts)
{
    parts.sequencer.abort();
    parts.database.reset();
}

// "LOCKED" or "UNLOCKED", frequency in hertz, attenuator in decibels
std::string stateOf(const Hardware &hardware)
{
    const HardwareState state = hardware.state();
    return (state.locked ? "LOCKED," : "UNLOCKED,") + formatted(state.frequencyHz) + ','
        + std::to_string(state.attenuationDecibel);
}

void addCommonCommands(ScpiParser &parser, const Parts &parts)
{
    const auto wait = [parts](const Parameters &) { waitUntilDone(parts); };
    parser.addSetting("*CLS", noParameters, [parts](const Parameters &) { parts.errors.clear(); });
    parser.addSetting("*OPC", noParameters, wait);
    parser.addSetting("*RST", noParameters, [parts](const Parameters &) { reset(parts); });
    parser.addSetting("*WAI", noParameters, wait);
    parser.addQuery("*IDN", noParameters, [](const Parameters &) { return "Velmora,SG4000,100001,1.0.0"; });
    parser.addQuery("*OPC", noParameters, [parts](const Parameters &) { return waitUntilDone(parts), "1"; });
    parser.addQuery("*TST", noParameters,
                    [parts](const Parameters &) { return parts.hardware.state().locked ? "0" : "1"; });
}

void addSystemCommands(ScpiParser &parser, const Parts &parts)
{
    parser.addSetting("SYSTem:PRESet", noParameters, [parts](const Parameters &) { reset(parts); });
    parser.addQuery("SYSTem:VERSion", noParameters, [](const Parameters &) { return "1999.0"; });
    parser.addQuery("SYSTem:ERRor[:NEXT]", noParameters,
                    [parts](const Parameters &) { return parts.errors.take(); });
    parser.addQuery("SYSTem:ERRor:ALL", noParameters,
                    [parts](const Parameters &) { return parts.errors.takeAll(); });
    parser.addQuery("SYSTem:ERRor:COUNt", noParameters,
                    [parts](const Parameters &) { return std::to_string(parts.errors.count()); });
    parser.addQuery("DIAGnostic:HARDware[:STATe]", noParameters,
                    [parts](const Parameters &) { return stateOf(parts.hardware); });
}

} // namespace

std::string formatted(double number)
{
    char digits[32];
    const auto result = std::to_chars(digits, digits + sizeof digits, number, std::chars_format::general, 12);
    return std::string(digits, result.ptr);
}

const std::string &textOf(const Parameter &parameter)
{
    if (parameter.kind != Parameter::Kind::String)
        throw ScpiError(ErrorCode::DataType, parameter.text);
    return parameter.text;
}

int integerOf(const Parameter &parameter, int minimum, int maximum)
{
    const double number = parameter.in(Unit::None);
    if (number < minimum || number > maximum || number != std::floor(number))
        throw ScpiError(ErrorCode::OutOfRange, formatted(number));
    return static_cast<int>(number);
}

bool switchOf(const Parameter &parameter)
{
    if (parameter.kind == Parameter::Kind::Word && (parameter.text == "ON" || parameter.text == "OFF"))
        return parameter.text == "ON";
    return integerOf(parameter, 0, 1) != 0;
}

void addCommands(ScpiParser &parser, const Parts &parts)
{
    addCommonCommands(parser, parts);
    addSystemCommands(parser, parts);
    addParameterCommands(parser, parts);
    addSequenceCommands(parser, parts);
    addDiagnosticCommands(parser, parts);
}

} // namespace SignalGenerator
