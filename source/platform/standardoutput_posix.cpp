#include "platform/standardoutput.h"

#include <cstdio>

namespace Zorvan::platform {

// One lock for both calls, which would otherwise take it each for itself.
void writeStandardOutput(std::string_view bytes)
{
    flockfile(stdout);
    fwrite_unlocked(bytes.data(), 1, bytes.size(), stdout);
    fflush_unlocked(stdout);
    funlockfile(stdout);
}

} // namespace Zorvan::platform
