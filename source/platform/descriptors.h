#pragma once

#include <string>

namespace Zorvan::platform {

/// Empty if this process can open at least \a count more files or sockets, else the reason why not. Any
/// thread. Where the system knows no such limit the answer is always empty.
[[nodiscard]] std::string descriptorShortage(int count);

} // namespace Zorvan::platform
