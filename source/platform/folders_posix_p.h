#pragma once

#include <string>

namespace Zorvan::platform {

/// The library's folder in \a sharedFolder, made if it is missing, when this user may write to it; empty if
/// not.
[[nodiscard]] std::string writableFolderIn(const std::string &sharedFolder);

/// The library's folder among this user's own data.
[[nodiscard]] std::string ownDataFolder();

} // namespace Zorvan::platform
