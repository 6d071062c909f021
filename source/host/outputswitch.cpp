#include "host/outputswitch.h"

#include <atomic>

namespace Zorvan::host {

namespace {

std::atomic<void (*)(bool)> s_outputSwitch{nullptr};

} // namespace

void setOutputEnabled(bool on)
{
    if (void (*const function)(bool) = s_outputSwitch.load())
        function(on);
}

void installOutputSwitch(void (*function)(bool on))
{
    s_outputSwitch.store(function);
}

} // namespace Zorvan::host
