#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Zorvan {

/// The file in which a running debug daemon tells its ports. The daemon writes it, in the folder for
/// temporary files; several daemons may run, told apart by the name of their instance.

/// What stands in it: a port per line, in decimal; more lines mean nothing.
struct DaemonLockFile
{
    /// Pieces between line ends, empty ones included. With fewer than two the daemon is still writing.
    std::size_t parts = 0;
    int daemonPort = -1; ///< to connect to
    int secondPort = -1; ///< handed on to callers

    [[nodiscard]] bool isComplete() const { return parts >= 2; }
};

/// Takes whatever bytes; what is no number is port 0. Ports only if the file is complete.
[[nodiscard]] DaemonLockFile parseDaemonLockFile(std::string_view content);

/// No parts at all if the file is missing or not to be trusted: whoever plants one would get the requests.
[[nodiscard]] DaemonLockFile readDaemonLockFile(const std::string &path);

/// \a name as it may stand in a file name: bounded, no separators. The daemon gets it in the same form.
[[nodiscard]] std::string daemonInstanceName(std::string_view name);

/// For a name from daemonInstanceName().
[[nodiscard]] std::string daemonLockFilePath(const std::string &instanceName);

} // namespace Zorvan
