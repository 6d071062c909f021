#include "line.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace Zorvan::soak {

namespace {

constexpr std::string_view mark = "~S";
constexpr std::size_t headLength = 14; // "~S07 00001234k", as long as it never has more digits

/// Most lines are short; some are as long as a receiver may get them.
std::size_t fillingOf(LineId id)
{
    const std::size_t mixed = (id.number * 2654435761U + id.thread) >> 8U;
    return mixed % 97 == 0 ? 1500 : mixed % 120;
}

} // namespace

std::string textOf(LineId id)
{
    char head[64];
    std::snprintf(head, sizeof head, "~S%02zu %08zu%c", id.thread, id.number, static_cast<char>(id.tail));
    std::string text = head;
    for (std::size_t i = fillingOf(id); i > 0; --i)
        text += static_cast<char>('a' + (id.number + i) % 26);
    return (text += static_cast<char>(id.tail)) += "~E";
}

void Stream::take(std::string_view line)
{
    const std::size_t place = line.rfind(mark);
    if (place == std::string_view::npos)
        return;
    glued += line.find(mark) == place ? 0 : 1;
    const std::string text(line.substr(place));
    LineId id;
    if (text.size() > headLength) {
        id.thread = std::strtoul(text.c_str() + 2, nullptr, 10);
        id.number = std::strtoul(text.c_str() + 5, nullptr, 10);
        id.tail = static_cast<Tail>(text[headLength - 1]);
    }
    if (textOf(id) == text)
        lines.push_back(id);
    else
        ++torn;
}

void Stream::takeText(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        std::string_view line = text.substr(0, end + 1);
        line = line.substr(0, line.find_last_not_of("\r\n") + 1);
        take(line);
        text.remove_prefix(end + 1);
    }
}

} // namespace Zorvan::soak
