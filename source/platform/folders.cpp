#include "platform/folders.h"

#include "platform/files.h"
#include "platform/files_p.h"
#include "platform/folders_p.h"

#include <filesystem>

namespace Zorvan::platform {

const char *const libraryFolderName = "Velmora";

namespace {

/// Seen from the working directory of now: the host may change it later.
std::string absolute(const std::string &folder)
{
    const std::filesystem::path path = std::filesystem::u8path(folder);
    if (path.has_root_directory())
        return folder;
    std::error_code failure;
    const std::filesystem::path whole = std::filesystem::absolute(path, failure);
    return failure ? folder : whole.u8string();
}

} // namespace

std::string withoutEndSeparator(std::string folder)
{
    while (!folder.empty() && isSeparator(folder.back()) && !isRoot(folder))
        folder.pop_back();
    return folder;
}

std::string joined(const std::string &folder, const std::string &name)
{
    std::string path = withoutEndSeparator(folder);
    if (!path.empty() && !isSeparator(path.back()))
        path += pathSeparator;
    return path + name;
}

std::string findProgramDataFolder()
{
    const std::string chosen = environmentValue("ZORVAN_PROGRAMDATA");
    return chosen.empty() ? systemProgramDataFolder() : joined(absolute(chosen), libraryFolderName);
}

const std::string &programDataFolder()
{
    // Never destroyed: static objects of the host still print while the process ends.
    static const std::string &folder = *new std::string(findProgramDataFolder());
    return folder;
}

void makeProgramDataFolder()
{
    makeFolders(programDataFolder().c_str());
}

std::string temporaryFolder()
{
    for (const char *name : {"TEMP", "TMPDIR"}) {
        const std::string folder = environmentValue(name);
        if (!folder.empty())
            return withoutEndSeparator(folder);
    }
    return withoutEndSeparator(systemTemporaryFolder());
}

} // namespace Zorvan::platform
