#include "platform/clock.h"
#include "platform/processor.h"

#include <x86intrin.h>

namespace Zorvan::platform {

std::uint64_t cycleCounter()
{
    return __rdtsc();
}

void spinPause()
{
    _mm_pause();
}

} // namespace Zorvan::platform
