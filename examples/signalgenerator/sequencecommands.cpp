#include "commands.h"
#include "modules.h"

#include <chrono>

namespace SignalGenerator {

namespace {

constexpr std::size_t longestList = 1000;

void requireMode(FrequencyMode mode, const Parts &parts)
{
    if (!parts.database.snapshot().is(ParameterId::FrequencyMode, static_cast<int>(mode)))
        throw ScpiError(ErrorCode::SettingsConflict, "FREQuency:MODE");
}

void startSweep(const Parts &parts)
{
    requireMode(FrequencyMode::Sweep, parts);
    const Settings settings = parts.database.snapshot();
    parts.sequencer.start({Module::Sweep, sweepPoints(settings),
                           std::chrono::duration<double>(settings[ParameterId::SweepDwell])});
}

void startList(const Parts &parts)
{
    requireMode(FrequencyMode::List, parts);
    parts.sequencer.start({Module::ListAdmin, parts.storage.points(),
                           std::chrono::duration<double>(parts.database.value(ParameterId::ListDwell))});
}

// Each value within the range of the parameter that it will stand for.
std::vector<double> listOf(const Parameters &parameters, const ParameterInfo &info)
{
    std::vector<double> values;
    for (const Parameter &parameter : parameters) {
        const double value = parameter.in(info.unit);
        if (value < info.minimum || value > info.maximum)
            throw ScpiError(ErrorCode::OutOfRange, formatted(value));
        values.push_back(value);
    }
    return values;
}

void storeWaveform(Storage &storage, const Parameters &parameters)
{
    if (parameters[1].kind != Parameter::Kind::Block)
        throw ScpiError(ErrorCode::DataType, parameters[1].text);
    storage.storeWaveform(textOf(parameters[0]), parameters[1].text);
}

void addListCommands(ScpiParser &parser, const Parts &parts)
{
    Storage &storage = parts.storage;
    parser.addSetting("[:SOURce]:LIST:SELect", oneParameter,
                      [&storage](const Parameters &p) { storage.selectList(textOf(p[0])); });
    parser.addSetting("[:SOURce]:LIST:FREQuency", {1, longestList}, [&storage](const Parameters &p) {
        storage.setListFrequencies(listOf(p, infoOf(ParameterId::Frequency)));
    });
    parser.addSetting("[:SOURce]:LIST:POWer", {1, longestList}, [&storage](const Parameters &p) {
        storage.setListLevels(listOf(p, infoOf(ParameterId::Level)));
    });
    parser.addSetting("[:SOURce]:LIST:TRIGger:EXECute", noParameters,
                      [parts](const Parameters &) { startList(parts); });
    parser.addQuery("[:SOURce]:LIST:CATalog", noParameters,
                    [&storage](const Parameters &) { return storage.listCatalog(); });
}

void addWaveformCommands(ScpiParser &parser, Storage &storage)
{
    parser.addSetting("[:SOURce]:BB:ARBitrary:WAVeform:SELect", oneParameter,
                      [&storage](const Parameters &p) { storage.selectWaveform(textOf(p[0])); });
    parser.addSetting("[:SOURce]:BB:ARBitrary:WAVeform:DATA", twoParameters,
                      [&storage](const Parameters &p) { storeWaveform(storage, p); });
    parser.addQuery("[:SOURce]:BB:ARBitrary:WAVeform:SELect", noParameters,
                    [&storage](const Parameters &) { return '"' + storage.selectedWaveform() + '"'; });
    parser.addQuery("[:SOURce]:BB:ARBitrary:WAVeform:CATalog", noParameters,
                    [&storage](const Parameters &) { return storage.waveformCatalog(); });
}

} // namespace

void addSequenceCommands(ScpiParser &parser, const Parts &parts)
{
    parser.addSetting("ABORt", noParameters, [parts](const Parameters &) { parts.sequencer.abort(); });
    parser.addSetting("[:SOURce]:SWEep[:FREQuency]:EXECute", noParameters,
                      [parts](const Parameters &) { startSweep(parts); });
    addListCommands(parser, parts);
    addWaveformCommands(parser, parts.storage);
}

} // namespace SignalGenerator
