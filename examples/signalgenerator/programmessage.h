#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace SignalGenerator {

enum class Unit { None, Hertz, Dbm, Decibel, Second, Percent, Degree };

/// One parameter of a command, as it was written.
struct Parameter
{
    enum class Kind { Number, Word, String, Block };

    Kind kind = Kind::Word;
    double number = 0;
    std::string text; ///< suffix of a number or word, both in upper case; content of a string or block

    /// The number in \a unit: 1.5 GHz is 1.5e9 in hertz; without a suffix it is in the unit already.
    /// Throws a ScpiError for other kinds of parameters and for suffixes of other units.
    [[nodiscard]] double in(Unit unit) const;
};

using Parameters = std::vector<Parameter>;

/// One command of a line: header and parameters.
struct MessageUnit
{
    bool absolute = false; ///< the header begins with ':' or '*', so it inherits no path
    bool query = false;
    std::vector<std::string> nodes; ///< in upper case; a common command is one node, "*IDN"
    Parameters parameters;
};

/// Cuts a line into commands at ';', one at a time, so that the commands before a syntax error are still
/// carried out.
class MessageReader
{
public:
    /// \a line must outlive the reader.
    explicit MessageReader(std::string_view line);

    /// Reads the next command into \a unit; false at the end of the line. Throws a ScpiError for bad syntax.
    [[nodiscard]] bool next(MessageUnit &unit);

private:
    [[nodiscard]] char peek() const { return m_rest.empty() ? '\0' : m_rest.front(); }
    [[nodiscard]] bool accept(char c);
    [[nodiscard]] bool skipBlanks();
    [[noreturn]] void fail(int code) const;

    void readHeader(MessageUnit &unit);
    void readParameters(MessageUnit &unit);
    [[nodiscard]] std::string_view readName();
    [[nodiscard]] Parameter readParameter();
    [[nodiscard]] Parameter readNumber();
    [[nodiscard]] Parameter readString();
    [[nodiscard]] Parameter readBlock();

    std::string_view m_rest;
};

} // namespace SignalGenerator
