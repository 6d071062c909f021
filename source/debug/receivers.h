#pragma once

namespace Zorvan {

/// Whether a receiver for all modules is installed: the library then keeps its notices to itself and stays
/// up.
[[nodiscard]] bool hasGlobalReceiver();

} // namespace Zorvan
