#pragma once

#include "leakanalyzer/plainmemory.h"

#include <cstdint>
#include <string>

namespace Zorvan::analysis {

/// Something that happened while methods were measured.
struct TimedEvent
{
    const char *name;
    int line;
    std::string text;
    std::uint64_t stamp; ///< in cycles
    std::uint32_t first;
    std::uint32_t second;
};

/// Hands the events to the output handler, with the cycles that lie between them.
void reportEvents(const PlainVector<TimedEvent> &events);

} // namespace Zorvan::analysis
