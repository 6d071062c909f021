#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Zorvan::soak {

/// What becomes of a line: it is kept, or refused by its level or by the output filter.
enum class Tail : char { Kept = 'k', AboveLevel = 'r', Filtered = 'd' };

/// One line of one thread. Numbers count from 0 in each thread and round.
struct LineId
{
    std::size_t thread = 0;
    std::size_t number = 0;
    Tail tail = Tail::Kept;
};

/// The text of a line. Its length and filling follow from the numbers, so that any damage shows.
[[nodiscard]] std::string textOf(LineId id);

/// What a sink has got, in its order.
struct Stream
{
    std::vector<LineId> lines;
    std::size_t torn = 0; ///< beginnings of lines
    std::size_t glued = 0; ///< lines behind such a beginning

    /// Takes a line of a sink, with whatever header; lines of other origin are passed over.
    void take(std::string_view line);
    /// Takes all lines of a text; CR before LF belongs to the line end.
    void takeText(std::string_view text);
};

} // namespace Zorvan::soak
