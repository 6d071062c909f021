#include "platform/clock.h"
#include "platform/processor.h"

namespace Zorvan::platform {

std::uint64_t cycleCounter()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
}

void spinPause()
{
    // Reading a clock takes about as long as the pause instruction that this processor may not have.
    static_cast<void>(std::chrono::steady_clock::now());
}

} // namespace Zorvan::platform
