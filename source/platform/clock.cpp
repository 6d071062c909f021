#include "platform/clock.h"

#include <thread>

namespace Zorvan::platform {

void sleepFor(std::chrono::milliseconds duration)
{
    std::this_thread::sleep_for(duration);
}

} // namespace Zorvan::platform
