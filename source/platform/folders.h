#pragma once

/// The folders that the library shares with other programs of the machine.

#include <string>

namespace Zorvan::platform {

/// Folder of the library's own files, without a separator at its end: the subfolder "Velmora" of the
/// machine's shared program-data folder.
///
/// POSIX: below the environment's ZORVAN_PROGRAMDATA when that is set and not empty; else /var/lib, when
/// Velmora exists there or can be made and is writable; else XDG_DATA_HOME or the user's ~/.local/share.
/// Windows: ZORVAN_PROGRAMDATA, else the common application-data folder, or "c:" itself when the shell does
/// not know it. Never a world-writable folder of temporary files: the names below it are predictable.
///
/// Found once per process, at the first call, and kept; any thread. The folder itself is made by
/// makeProgramDataFolder().
[[nodiscard]] const std::string &programDataFolder();

/// The same search as programDataFolder(), done anew at each call, for the current environment.
[[nodiscard]] std::string findProgramDataFolder();

/// Makes programDataFolder() with its parents if it is missing. Failure is silent: later file accesses fail
/// too. Call it when a file in it is about to be created.
void makeProgramDataFolder();

/// Folder for temporary files: the environment's TEMP, else TMPDIR, else the system's own; without a
/// separator at its end unless it is a root.
[[nodiscard]] std::string temporaryFolder();

} // namespace Zorvan::platform
