#pragma once

#include "support/programdata.h"

#include <map>

namespace Zorvan::test {

/// A line, up to 1.5 KB long, that shows who wrote it, its number, and whether it is whole.
inline std::string sequenceLine(const std::string &writer, int number)
{
    const char filler = static_cast<char>('a' + number % 26);
    return writer + ' ' + std::to_string(number) + ' ' + std::string(number * 131 % 1500, filler);
}

/// How many lines each writer has in unbroken order from 0 on; any other line counts for "broken".
using Counts = std::map<std::string, int>;
inline Counts countsIn(const std::vector<std::string> &lines)
{
    Counts counts;
    for (const std::string &line : lines) {
        const std::string writer = line.substr(0, line.find(' '));
        ++counts[line == sequenceLine(writer, counts[writer]) ? writer : "broken"];
    }
    return counts;
}

/// The lines of a log file without their time stamps; '?' marks a line that has none.
inline std::vector<std::string> messagesIn(const std::string &name)
{
    const std::string form = "0000/00/00-00:00:00.000: ";
    std::vector<std::string> lines = linesOf(readFile(libraryFile(name)));
    for (std::string &line : lines) {
        std::string stamp = line.substr(0, form.size());
        for (char &character : stamp)
            character = character >= '0' && character <= '9' ? '0' : character;
        line = stamp == form ? line.substr(form.size()) : '?' + line;
    }
    return lines;
}

} // namespace Zorvan::test
