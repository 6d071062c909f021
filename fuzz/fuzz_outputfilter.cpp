// The two filters of lines, from the host's settings and from remote clients.

#include "debug/outputfilter.h"
#include "fuzzcheck.h"

using Zorvan::OutputFilter;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const auto text = [&] { return QString::fromStdString(std::string(input.line())); };
    const QString pattern = text();
    const QString entries = text();
    OutputFilter byPattern;
    OutputFilter byEntries;
    OutputFilter byBoth;
    OutputFilter more;
    const bool isPatternUsable = byPattern.setPattern(pattern);
    const bool areEntriesUsable = byEntries.setEntries(entries);
    require(byBoth.setPattern(pattern) == isPatternUsable);
    require(byBoth.setEntries(entries) == areEntriesUsable);
    const bool areMoreUsable = more.setEntries(entries + QLatin1String(";module|text"));
    require(byPattern.pattern() == pattern && byEntries.entries() == entries);
    require(byBoth.isActive() == (!pattern.isEmpty() || !entries.isEmpty()));
    constexpr int longest = 300; // backtracking grows with the line
    while (!input.rest.empty()) {
        const QString line = text().left(longest);
        const bool passesPattern = byPattern.passes(line, true);
        require(passesPattern || !pattern.isEmpty());
        require(!passesPattern || isPatternUsable);
        for (const bool nameShown : {false, true}) {
            const bool passesEntries = byEntries.passes(line, nameShown);
            require(passesEntries || !entries.isEmpty());
            require(!passesEntries || areEntriesUsable);
            require(byPattern.passes(line, nameShown) == passesPattern);
            if (isPatternUsable && areEntriesUsable)
                require(byBoth.passes(line, nameShown) == (passesPattern && passesEntries));
            require(!areMoreUsable || more.passes(line, nameShown) || !passesEntries || entries.isEmpty());
        }
        require(!byEntries.passes(line, true) || byEntries.passes(line, false));
    }
    return 0;
}
