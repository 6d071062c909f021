#pragma once

/// The way down to the output gate for rooms that lie below it.

namespace Zorvan::host {

/// Lets messages through to all sinks, or stops all of them at the door. Any thread.
void setOutputEnabled(bool on);

/// Called once at the start, by the room that has the gate. Without it setOutputEnabled() does nothing.
void installOutputSwitch(void (*function)(bool on));

} // namespace Zorvan::host
