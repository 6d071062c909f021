#include "programmessage.h"

#include "errorqueue.h"
#include "headerpattern.h"

#include <charconv>
#include <cmath>

namespace SignalGenerator {

namespace {

struct Suffix
{
    std::string_view name;
    Unit unit;
    double factor;
    double divisor; ///< 50 / 1e6 is the number nearest to 50e-6, 50 * 1e-6 is not
};

constexpr Suffix suffixes[] = {
    {"HZ", Unit::Hertz, 1, 1},    {"KHZ", Unit::Hertz, 1e3, 1}, {"MHZ", Unit::Hertz, 1e6, 1},
    {"GHZ", Unit::Hertz, 1e9, 1}, {"DBM", Unit::Dbm, 1, 1},     {"DB", Unit::Decibel, 1, 1},
    {"S", Unit::Second, 1, 1},    {"MS", Unit::Second, 1, 1e3}, {"US", Unit::Second, 1, 1e6},
    {"NS", Unit::Second, 1, 1e9}, {"PCT", Unit::Percent, 1, 1}, {"%", Unit::Percent, 1, 1},
    {"DEG", Unit::Degree, 1, 1},
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r';
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isNameCharacter(char c)
{
    return isLetter(c) || isDigit(c) || c == '_';
}

} // namespace

double Parameter::in(Unit unit) const
{
    if (kind != Kind::Number)
        throw ScpiError(ErrorCode::DataType, text);
    if (text.empty())
        return number;
    for (const Suffix &suffix : suffixes)
        if (suffix.unit == unit && suffix.name == text)
            return number * suffix.factor / suffix.divisor;
    throw ScpiError(ErrorCode::InvalidSuffix, text);
}

MessageReader::MessageReader(std::string_view line)
    : m_rest(line)
{}

bool MessageReader::next(MessageUnit &unit)
{
    while (skipBlanks() || accept(';')) {}
    if (m_rest.empty())
        return false;
    unit = MessageUnit();
    readHeader(unit);
    const bool blanks = skipBlanks();
    if (!m_rest.empty() && peek() != ';') {
        if (!blanks)
            fail(ErrorCode::Syntax);
        readParameters(unit);
    }
    return true;
}

bool MessageReader::accept(char c)
{
    if (m_rest.empty() || m_rest.front() != c)
        return false;
    m_rest.remove_prefix(1);
    return true;
}

bool MessageReader::skipBlanks()
{
    bool any = false;
    while (isBlank(peek())) {
        m_rest.remove_prefix(1);
        any = true;
    }
    return any;
}

void MessageReader::fail(int code) const
{
    throw ScpiError(code, m_rest.empty() ? "at the end of the line" : std::string(m_rest.substr(0, 24)));
}

void MessageReader::readHeader(MessageUnit &unit)
{
    if (accept('*')) {
        unit.absolute = true;
        unit.nodes.push_back('*' + toUpper(readName()));
    } else {
        unit.absolute = accept(':');
        do {
            unit.nodes.push_back(toUpper(readName()));
        } while (accept(':'));
    }
    unit.query = accept('?');
}

void MessageReader::readParameters(MessageUnit &unit)
{
    do {
        (void)skipBlanks();
        unit.parameters.push_back(readParameter());
        (void)skipBlanks();
    } while (accept(','));
    if (!m_rest.empty() && peek() != ';')
        fail(ErrorCode::Syntax);
}

std::string_view MessageReader::readName()
{
    if (!isLetter(peek()))
        fail(ErrorCode::Syntax);
    std::size_t length = 1;
    while (length < m_rest.size() && isNameCharacter(m_rest[length]))
        ++length;
    const std::string_view name = m_rest.substr(0, length);
    m_rest.remove_prefix(length);
    return name;
}

Parameter MessageReader::readParameter()
{
    switch (peek()) {
    case '"':
    case '\'':
        return readString();
    case '#':
        return readBlock();
    default:
        if (isLetter(peek()))
            return {Parameter::Kind::Word, 0, toUpper(readName())};
        return readNumber();
    }
}

Parameter MessageReader::readNumber()
{
    std::string_view digits = m_rest;
    if (peek() == '+' && digits.size() > 1 && digits[1] != '-')
        digits.remove_prefix(1); // from_chars takes no plus sign
    Parameter result;
    result.kind = Parameter::Kind::Number;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), result.number);
    if (error == std::errc::invalid_argument || !std::isfinite(result.number)) // from_chars takes "-inf"
        fail(ErrorCode::Syntax);
    if (error == std::errc::result_out_of_range)
        fail(ErrorCode::ExponentTooLarge);
    m_rest.remove_prefix(static_cast<std::size_t>(end - m_rest.data()));
    (void)skipBlanks();
    if (accept('%'))
        result.text = '%';
    else if (isLetter(peek()))
        result.text = toUpper(readName());
    return result;
}

Parameter MessageReader::readString()
{
    const char quote = peek();
    Parameter result;
    result.kind = Parameter::Kind::String;
    do { // a doubled quote continues the text with one quote
        m_rest.remove_prefix(1);
        const std::size_t end = m_rest.find(quote);
        if (end == std::string_view::npos)
            fail(ErrorCode::InvalidString);
        result.text += m_rest.substr(0, end);
        m_rest.remove_prefix(end + 1);
        if (peek() == quote)
            result.text += quote;
    } while (peek() == quote);
    return result;
}

// #<digits of the length><length><bytes>: "#15hello"
Parameter MessageReader::readBlock()
{
    const std::size_t digits =
        m_rest.size() > 1 && isDigit(m_rest[1]) ? static_cast<std::size_t>(m_rest[1] - '0') : 0;
    std::size_t length = 0;
    if (digits == 0 || m_rest.size() < 2 + digits)
        fail(ErrorCode::InvalidBlock);
    const char *const lengthEnd = m_rest.data() + 2 + digits;
    const auto [end, error] = std::from_chars(m_rest.data() + 2, lengthEnd, length);
    if (error != std::errc() || end != lengthEnd || m_rest.size() - 2 - digits < length)
        fail(ErrorCode::InvalidBlock);
    Parameter result{Parameter::Kind::Block, 0, std::string(m_rest.substr(2 + digits, length))};
    m_rest.remove_prefix(2 + digits + length);
    return result;
}

} // namespace SignalGenerator
