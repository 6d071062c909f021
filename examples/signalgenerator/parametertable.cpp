#include "database.h"

namespace SignalGenerator {

namespace {

using Kind = ParameterKind;
using Id = ParameterId;

constexpr ParameterInfo number(Id id, const char *header, Group group, Unit unit, double minimum,
                               double maximum, double preset)
{
    return {id, header, Kind::Number, group, unit, minimum, maximum, preset, ""};
}

constexpr ParameterInfo onOff(Id id, const char *header, Group group)
{
    return {id, header, Kind::Switch, group, Unit::None, 0, 1, 0, ""};
}

constexpr ParameterInfo choice(Id id, const char *header, Group group, double last, const char *choices)
{
    return {id, header, Kind::Choice, group, Unit::None, 0, last, 0, choices};
}

constexpr std::array<ParameterInfo, parameterCount> table = {{
    number(Id::Frequency, "[:SOURce]:FREQuency[:CW|:FIXed]", Group::Synthesizer, Unit::Hertz, 9e3, 6e9, 1e9),
    number(Id::FrequencyOffset, "[:SOURce]:FREQuency:OFFSet", Group::None, Unit::Hertz, -50e9, 50e9, 0),
    choice(Id::FrequencyMode, "[:SOURce]:FREQuency:MODE", Group::Synthesizer, 2, "CW|SWEep|LIST"),
    number(Id::FrequencyStart, "[:SOURce]:FREQuency:STARt", Group::None, Unit::Hertz, 9e3, 6e9, 100e6),
    number(Id::FrequencyStop, "[:SOURce]:FREQuency:STOP", Group::None, Unit::Hertz, 9e3, 6e9, 500e6),
    number(Id::Phase, "[:SOURce]:PHASe[:ADJust]", Group::Synthesizer, Unit::Degree, -360, 360, 0),
    choice(Id::ReferenceSource, "[:SOURce]:ROSCillator:SOURce", Group::Synthesizer, 1, "INTernal|EXTernal"),
    onOff(Id::Output, "OUTPut[:STATe]", Group::Output),
    number(Id::Level, "[:SOURce]:POWer[:LEVel][:IMMediate][:AMPLitude]", Group::Output, Unit::Dbm, -145, 30,
           -30),
    number(Id::LevelOffset, "[:SOURce]:POWer[:LEVel][:IMMediate]:OFFSet", Group::None, Unit::Decibel, -100,
           100, 0),
    number(Id::LevelLimit, "[:SOURce]:POWer:LIMit[:AMPLitude]", Group::Output, Unit::Dbm, -145, 30, 30),
    onOff(Id::AmState, "[:SOURce]:AM:STATe", Group::Modulator),
    number(Id::AmDepth, "[:SOURce]:AM[:DEPTh]", Group::Modulator, Unit::Percent, 0, 100, 30),
    onOff(Id::FmState, "[:SOURce]:FM:STATe", Group::Modulator),
    number(Id::FmDeviation, "[:SOURce]:FM[:DEViation]", Group::Modulator, Unit::Hertz, 0, 16e6, 10e3),
    onOff(Id::PulseState, "[:SOURce]:PULM:STATe", Group::Modulator),
    number(Id::PulsePeriod, "[:SOURce]:PULM[:INTernal]:PERiod", Group::Modulator, Unit::Second, 100e-9, 100,
           10e-6),
    number(Id::LfFrequency, "[:SOURce]:LFOutput:FREQuency", Group::Modulator, Unit::Hertz, 0.1, 1e6, 1e3),
    onOff(Id::IqState, "[:SOURce]:IQ:STATe", Group::Baseband),
    number(Id::IqQuadrature, "[:SOURce]:IQ:IMPairment:QUADrature[:ANGLe]", Group::Baseband, Unit::Degree, -10,
           10, 0),
    onOff(Id::BasebandState, "[:SOURce]:BB:ARBitrary:STATe", Group::Baseband),
    number(Id::BasebandClock, "[:SOURce]:BB:ARBitrary:CLOCk", Group::Baseband, Unit::Hertz, 400, 300e6, 1e6),
    number(Id::SweepPoints, "[:SOURce]:SWEep[:FREQuency]:POINts", Group::None, Unit::None, 2, 1000, 11),
    number(Id::SweepDwell, "[:SOURce]:SWEep[:FREQuency]:DWELl", Group::None, Unit::Second, 50e-6, 100, 1e-3),
    choice(Id::SweepSpacing, "[:SOURce]:SWEep[:FREQuency]:SPACing", Group::None, 1, "LINear|LOGarithmic"),
    number(Id::ListDwell, "[:SOURce]:LIST:DWELl", Group::None, Unit::Second, 50e-6, 100, 1e-3),
}};

constexpr bool isInOrder()
{
    for (std::size_t i = 0; i < table.size(); ++i)
        if (table[i].id != static_cast<Id>(i))
            return false;
    return true;
}
static_assert(isInOrder(), "infoOf() looks a parameter up by its id");

} // namespace

const std::array<ParameterInfo, parameterCount> &parameterTable()
{
    return table;
}

const ParameterInfo &infoOf(ParameterId id)
{
    return table[static_cast<std::size_t>(id)];
}

} // namespace SignalGenerator
