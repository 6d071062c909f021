// The functions of the C library by their names: those of the program come first when libraries are loaded,
// so the library and Qt call these. Nobody needs to be root, and no other process sees another time.

#include "actors.h"

#include <ctime>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

std::atomic<long> s_shift{0}; // seconds

} // namespace

void Zorvan::soak::shiftClock(long seconds)
{
    s_shift = seconds;
}

EXPORTED int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const long result = syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE))
        time->tv_sec += s_shift.load(std::memory_order_relaxed);
    return static_cast<int>(result);
}

EXPORTED int gettimeofday(timeval *place, void * /*zone*/) noexcept
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    *place = {now.tv_sec, now.tv_nsec / 1000};
    return 0;
}
