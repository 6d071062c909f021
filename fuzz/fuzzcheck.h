#pragma once

#include <cstdlib>

/// Ends the program when a promise does not hold, in every kind of build.
inline void require(bool holds)
{
    if (!holds)
        std::abort();
}
