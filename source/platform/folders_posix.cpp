#include "platform/files_p.h"
#include "platform/folders_p.h"
#include "platform/folders_posix_p.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

const char *const sharedData = "/var/lib";

std::string homeFolder()
{
    std::string home = environmentValue("HOME");
    if (!home.empty())
        return home;
    std::array<char, 4096> texts{};
    passwd entry{};
    passwd *found = nullptr;
    if (getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &found) != 0 || found == nullptr)
        return {};
    return found->pw_dir;
}

} // namespace

std::string environmentValue(const char *name)
{
    const char *value = std::getenv(name);
    return value == nullptr ? std::string() : std::string(value);
}

bool isRoot(const std::string &folder)
{
    return folder == "/";
}

std::string writableFolderIn(const std::string &sharedFolder)
{
    const std::string folder = joined(sharedFolder, libraryFolderName);
    makeFolder(folder.c_str());
    return isFolder(folder.c_str()) && access(folder.c_str(), W_OK) == 0 ? folder : std::string();
}

std::string ownDataFolder()
{
    const std::string data = environmentValue("XDG_DATA_HOME");
    // A relative path would name another folder after each change of the current one.
    if (!data.empty() && data.front() == '/')
        return joined(data, libraryFolderName);
    const std::string home = homeFolder();
    // Without any home the files cannot be written, and their users expect no more than that.
    return home.empty() ? joined(sharedData, libraryFolderName)
                        : joined(home + "/.local/share", libraryFolderName);
}

std::string systemProgramDataFolder()
{
    const std::string shared = writableFolderIn(sharedData);
    return shared.empty() ? ownDataFolder() : shared;
}

std::string systemTemporaryFolder()
{
    return "/tmp";
}

} // namespace Zorvan::platform
