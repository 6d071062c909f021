#pragma once

#include <string_view>

namespace Zorvan::platform {

/// Writes \a bytes to the C library's standard output and flushes it, as one piece even while other threads
/// write there. Any thread. Errors are ignored; what a closed pipe does is the host's choice (SIGPIPE).
void writeStandardOutput(std::string_view bytes);

/// Writes \a bytes to standard error, past the C library. Any thread. Errors are ignored, and a closed pipe
/// raises no signal: what the library has to say there must not end its host.
void writeStandardError(std::string_view bytes);

} // namespace Zorvan::platform
