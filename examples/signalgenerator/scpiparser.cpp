#include "scpiparser.h"

#include "print.h"
#include "settingtimes.h"

#include <utility>

namespace SignalGenerator {

namespace {

std::string headerOf(const MessageUnit &unit)
{
    std::string header;
    for (const std::string &node : unit.nodes)
        header += (header.empty() ? "" : ":") + node;
    return unit.query ? header + '?' : header;
}

bool isCommandError(int code)
{
    return code <= -100 && code > -200;
}

} // namespace

ScpiParser::ScpiParser(ErrorQueue &errors)
    : m_errors(errors)
{}

void ScpiParser::addSetting(std::string_view pattern, ParameterCount count, Action action)
{
    m_commands.push_back(
        {HeaderPattern(pattern), false, count, [action = std::move(action)](const Parameters &parameters) {
             action(parameters);
             return std::string();
         }});
}

void ScpiParser::addQuery(std::string_view pattern, ParameterCount count, Answer answer)
{
    m_commands.push_back({HeaderPattern(pattern), true, count, std::move(answer)});
}

std::string ScpiParser::execute(std::string_view line)
{
    m_path.clear();
    std::string replies;
    MessageReader reader(line);
    for (;;) {
        try {
            MessageUnit unit;
            if (!reader.next(unit))
                return replies;
            const std::string reply = executeUnit(unit);
            replies += (replies.empty() || reply.empty() ? "" : ";") + reply;
        } catch (const ScpiError &error) {
            m_errors.push(error.code(), error.what());
            if (isCommandError(error.code()))
                return replies;
        }
    }
}

std::string ScpiParser::executeUnit(MessageUnit &unit)
{
    ZORVAN_TIME_METHOD();
    const TimeMeasurement measurement(Module::Scpi, "command");
    return prepared(unit).run(unit.parameters);
}

const ScpiParser::Command &ScpiParser::prepared(MessageUnit &unit)
{
    ZORVAN_TIME_METHOD();
    const TimedStage stage(Zorvan::timeMeasParse);
    inheritPath(unit);
    const Command &command = find(unit);
    if (unit.parameters.size() < command.count.fewest)
        throw ScpiError(ErrorCode::MissingParameter, headerOf(unit));
    if (unit.parameters.size() > command.count.most)
        throw ScpiError(ErrorCode::ParameterNotAllowed, headerOf(unit));
    print(Module::Scpi, Level::Info, "%s, %zu parameters", headerOf(unit).c_str(), unit.parameters.size());
    return command;
}

void ScpiParser::inheritPath(MessageUnit &unit)
{
    if (unit.nodes.front().front() == '*')
        return; // common commands stand outside the tree and leave the path as it is
    if (!unit.absolute)
        unit.nodes.insert(unit.nodes.begin(), m_path.begin(), m_path.end());
    m_path.assign(unit.nodes.begin(), unit.nodes.end() - 1);
}

const ScpiParser::Command &ScpiParser::find(const MessageUnit &unit) const
{
    for (const Command &command : m_commands)
        if (command.query == unit.query && command.pattern.matches(unit.nodes))
            return command;
    throw ScpiError(ErrorCode::UndefinedHeader, headerOf(unit));
}

} // namespace SignalGenerator
