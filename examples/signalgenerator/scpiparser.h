#pragma once

#include "errorqueue.h"
#include "headerpattern.h"
#include "programmessage.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace SignalGenerator {

/// Carries out command lines. Used by one thread at a time.
///
/// Commands on a line are separated by ';'; one that does not begin with ':' or '*' continues at the path of
/// the one before: "FREQ:STAR 1 GHz;STOP 2 GHz". Errors go to the error queue: an execution error skips its
/// command, a command error (-1xx) the rest of the line too, because what follows may have been meant
/// differently.
class ScpiParser
{
public:
    /// Carry out a setting or answer a query; they throw a ScpiError to refuse.
    using Action = std::function<void(const Parameters &parameters)>;
    using Answer = std::function<std::string(const Parameters &parameters)>;

    struct ParameterCount
    {
        std::size_t fewest;
        std::size_t most;
    };

    explicit ScpiParser(ErrorQueue &errors);

    /// \a pattern as HeaderPattern reads it, without the '?' of a query.
    void addSetting(std::string_view pattern, ParameterCount count, Action action);
    void addQuery(std::string_view pattern, ParameterCount count, Answer answer);
    /// Returns the replies of the line's queries, separated by ';'.
    [[nodiscard]] std::string execute(std::string_view line);

private:
    struct Command
    {
        HeaderPattern pattern;
        bool query;
        ParameterCount count;
        Answer run; ///< of a setting: gives an empty reply
    };

    [[nodiscard]] std::string executeUnit(MessageUnit &unit);
    /// The command of a unit whose parameters have the right number.
    [[nodiscard]] const Command &prepared(MessageUnit &unit);
    void inheritPath(MessageUnit &unit);
    [[nodiscard]] const Command &find(const MessageUnit &unit) const;

    ErrorQueue &m_errors;
    std::vector<Command> m_commands;
    std::vector<std::string> m_path; // of the line's last command that was not a common one
};

} // namespace SignalGenerator
