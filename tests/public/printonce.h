#pragma once

#include <zorvan/debug.h>

/// A place in a header: one place, whoever includes it.
inline void printOnce()
{
    ZORVAN_PRINT_ONCE(2, 0, 2, "once from a header");
}

void printOnceFromAnotherFile();
