#include <zorvan/debug.h>

namespace {

/// Uses macros up before the header comes.
void printElsewhere()
{
    ZORVAN_PRINT(2, 0, 2, "elsewhere");
    ZORVAN_PRINT_ONCE(2, 0, 2, "elsewhere");
}

} // namespace

#include "printonce.h"

void printOnceFromAnotherFile()
{
    printElsewhere();
    printOnce();
}
