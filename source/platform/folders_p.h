#pragma once

#include <string>

namespace Zorvan::platform {

/// Value of a variable of the environment (UTF-8 on Windows); empty if it is not set.
[[nodiscard]] std::string environmentValue(const char *name);

/// \a folder without separators at its end; a root keeps its own.
[[nodiscard]] std::string withoutEndSeparator(std::string folder);

/// \a name in \a folder.
[[nodiscard]] std::string joined(const std::string &folder, const std::string &name);

/// True if \a folder is nothing but the root of a file tree or drive.
[[nodiscard]] bool isRoot(const std::string &folder);

/// The library's folder where the environment does not name one.
[[nodiscard]] std::string systemProgramDataFolder();

/// The system's folder for temporary files where the environment does not name one.
[[nodiscard]] std::string systemTemporaryFolder();

extern const char *const libraryFolderName;

} // namespace Zorvan::platform
