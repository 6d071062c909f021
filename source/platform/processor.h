#pragma once

/// The pause of a spinning thread.

namespace Zorvan::platform {

/// Tells the processor that this thread waits in a loop; some ten nanoseconds.
void spinPause();

} // namespace Zorvan::platform
