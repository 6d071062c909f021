#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// Ends the program when a promise does not hold, in every kind of build.
inline void require(bool holds, int line = __builtin_LINE())
{
    if (holds)
        return;
    std::fprintf(stderr, "broken promise, line %d\n", line);
    std::abort();
}

/// An input, from which a harness takes one piece after the other. At its end there are zeros and nothing.
struct Input
{
    Input(const std::uint8_t *data, std::size_t size)
        : rest(reinterpret_cast<const char *>(data), size)
    {}
    unsigned byte()
    {
        const std::string_view first = bytes(1);
        return first.empty() ? 0 : static_cast<unsigned char>(first.front());
    }
    std::string_view bytes(std::size_t count)
    {
        const std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(taken.size());
        return taken;
    }
    /// Without its line feed.
    std::string_view line()
    {
        const std::string_view taken = bytes(std::min(rest.find('\n'), rest.size()));
        bytes(1);
        return taken;
    }

    std::string_view rest;
};
