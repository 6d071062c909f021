#include "commands.h"
#include "settingtimes.h"

namespace SignalGenerator {

namespace {

const Keyword minimumWord("MINimum");
const Keyword maximumWord("MAXimum");
const Keyword defaultWord("DEFault");

double choiceValue(const ParameterInfo &info, const std::string &word)
{
    const std::vector<Keyword> choices = keywordList(info.choices);
    for (std::size_t i = 0; i < choices.size(); ++i)
        if (choices[i].matches(word))
            return static_cast<double>(i);
    throw ScpiError(ErrorCode::IllegalValue, word);
}

// MINimum, MAXimum and DEFault stand for numbers.
double namedValue(const ParameterInfo &info, const std::string &word)
{
    if (minimumWord.matches(word))
        return info.minimum;
    if (maximumWord.matches(word))
        return info.maximum;
    if (defaultWord.matches(word))
        return info.preset;
    throw ScpiError(ErrorCode::IllegalValue, word);
}

double valueOf(const ParameterInfo &info, const Parameter &parameter)
{
    const bool isWord = parameter.kind == Parameter::Kind::Word;
    switch (info.kind) {
    case ParameterKind::Switch:
        return switchOf(parameter) ? 1 : 0;
    case ParameterKind::Choice:
        if (isWord)
            return choiceValue(info, parameter.text);
        throw ScpiError(ErrorCode::DataType, parameter.text);
    case ParameterKind::Number:
        break;
    }
    return isWord ? namedValue(info, parameter.text) : parameter.in(info.unit);
}

std::string replyFor(const ParameterInfo &info, double value)
{
    return info.kind == ParameterKind::Choice
        ? keywordList(info.choices)[static_cast<std::size_t>(value)].shortForm
        : formatted(value);
}

// The frequency and level that a user enters include what is connected to the output.
double offsetOf(ParameterId id, const Database &database)
{
    switch (id) {
    case ParameterId::Frequency:
        return database.value(ParameterId::FrequencyOffset);
    case ParameterId::Level:
        return database.value(ParameterId::LevelOffset);
    default:
        return 0;
    }
}

void checkConflicts(ParameterId id, double value, const Parts &parts)
{
    if (id == ParameterId::BasebandState && value != 0 && parts.storage.selectedWaveform().empty())
        throw ScpiError(ErrorCode::SettingsConflict, "no waveform is selected");
}

void set(const ParameterInfo &info, const Parameter &parameter, const Parts &parts)
{
    const TimedStage stage(Zorvan::timeMeasScpiToDatabase);
    double value = valueOf(info, parameter);
    if (parameter.kind == Parameter::Kind::Number)
        value -= offsetOf(info.id, parts.database);
    checkConflicts(info.id, value, parts);
    if (!parts.database.set(info.id, value))
        throw ScpiError(ErrorCode::OutOfRange, formatted(value));
}

std::string query(const ParameterInfo &info, const Parameters &parameters, const Parts &parts)
{
    if (parameters.empty())
        return replyFor(info, parts.database.value(info.id) + offsetOf(info.id, parts.database));
    if (parameters[0].kind != Parameter::Kind::Word)
        throw ScpiError(ErrorCode::DataType, parameters[0].text);
    return replyFor(info, namedValue(info, parameters[0].text) + offsetOf(info.id, parts.database));
}

} // namespace

void addParameterCommands(ScpiParser &parser, const Parts &parts)
{
    for (const ParameterInfo &info : parameterTable()) {
        parser.addSetting(info.header, oneParameter,
                          [&info, parts](const Parameters &p) { set(info, p[0], parts); });
        parser.addQuery(info.header, {0, 1},
                        [&info, parts](const Parameters &p) { return query(info, p, parts); });
    }
}

} // namespace SignalGenerator
