#include "lowlevelfunctions/argumentlessformat.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace Zorvan {

namespace {

constexpr int largestField = 4095;

struct Conversion
{
    std::string flags;
    int width = 0;
    int precision = -1; // none
    char type = '\0';
};

bool isOneOf(char c, const char *set)
{
    return c != '\0' && std::strchr(set, c) != nullptr;
}

int readNumber(const char *&position)
{
    int number = 0;
    for (; *position >= '0' && *position <= '9'; ++position)
        number = std::min(largestField, number * 10 + (*position - '0'));
    return number;
}

/// A number or '*' (counts as 0), with a possible "1$" behind it.
int readField(const char *&position)
{
    if (*position == '*')
        ++position;
    const int number = readNumber(position);
    if (*position != '$')
        return number;
    ++position;
    return 0;
}

/// Reads the conversion whose '%' stands before \a position and moves behind it; type stays 0 if it is none.
Conversion readConversion(const char *&position)
{
    Conversion conversion;
    const char *p = position;
    const char *const afterPercent = p;
    readNumber(p);
    p = (p != afterPercent && *p == '$') ? p + 1 : afterPercent; // "%2$d": which argument does not matter
    for (; isOneOf(*p, "-+ #0'I"); ++p) {
        if (conversion.flags.find(*p) == std::string::npos && isOneOf(*p, "-+ #0"))
            conversion.flags += *p;
    }
    conversion.width = readField(p);
    if (*p == '.') {
        ++p;
        conversion.precision = readField(p);
    }
    while (isOneOf(*p, "hlqjztL"))
        ++p;
    if (isOneOf(*p, "diouxXcCsSpneEfFgGaA%")) {
        conversion.type = *p;
        position = p + 1;
    }
    return conversion;
}

/// A text in the caller's buffer; what does not fit is dropped.
class BoundedText
{
public:
    BoundedText(char *buffer, std::size_t capacity)
        : m_buffer(buffer)
        , m_capacity(capacity)
    {}
    void append(const char *piece, std::size_t length)
    {
        const std::size_t taken = std::min(length, m_capacity - m_length);
        std::memcpy(m_buffer + m_length, piece, taken);
        m_length += taken;
    }
    [[nodiscard]] std::size_t length() const { return m_length; }

private:
    char *const m_buffer;
    const std::size_t m_capacity;
    std::size_t m_length = 0;
};

template <typename Text, typename Value>
void appendValue(Text &text, const Conversion &conversion, char type, Value value)
{
    std::string format = "%" + conversion.flags + "*.*";
    format += type;
    char piece[2 * largestField + 64];
    const int length =
        std::snprintf(piece, sizeof piece, format.c_str(), conversion.width, conversion.precision, value);
    if (length > 0)
        text.append(piece, std::min(sizeof piece - 1, static_cast<std::size_t>(length)));
}

template <typename Text>
void appendConversion(Text &text, const Conversion &conversion)
{
    const char type = conversion.type;
    if (type == '%')
        text.append("%", 1);
    else if (isOneOf(type, "diouxXcC"))
        appendValue(text, conversion, type == 'C' ? 'c' : type, 0);
    else if (isOneOf(type, "sS"))
        appendValue(text, conversion, 's', "(null)");
    else if (type == 'p')
        appendValue(text, conversion, 'p', static_cast<const void *>(nullptr));
    else if (type != 'n')
        appendValue(text, conversion, type, 0.0);
}

template <typename Text>
void expand(Text &text, const char *format)
{
    const char *position = format ? format : "";
    while (*position != '\0') {
        const std::size_t plain = std::strcspn(position, "%");
        text.append(position, plain);
        position += plain;
        if (*position == '\0')
            break;
        ++position;
        const Conversion conversion = readConversion(position);
        if (conversion.type == '\0')
            text.append("%", 1); // no conversion: what follows is ordinary text
        else
            appendConversion(text, conversion);
    }
}

} // namespace

std::string formatWithoutArguments(const char *format)
{
    std::string text;
    expand(text, format);
    return text;
}

std::size_t formatWithoutArguments(char *buffer, std::size_t capacity, const char *format)
{
    BoundedText text(buffer, capacity);
    expand(text, format);
    return text.length();
}

} // namespace Zorvan
