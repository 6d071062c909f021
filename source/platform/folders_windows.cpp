#include "platform/files_p.h"
#include "platform/folders_p.h"
#include "platform/text_windows_p.h"

#include <array>
#include <shlobj.h>
#include <windows.h>

namespace Zorvan::platform {

std::string environmentValue(const char *name)
{
    const std::wstring wideName = wideText(name);
    std::wstring value(GetEnvironmentVariableW(wideName.c_str(), nullptr, 0), L'\0');
    if (!value.empty())
        value.resize(
            GetEnvironmentVariableW(wideName.c_str(), value.data(), static_cast<DWORD>(value.size())));
    return utf8Text(value);
}

bool isRoot(const std::string &folder)
{
    return folder.size() == 1 || (folder.size() == 3 && folder[1] == ':');
}

std::string systemProgramDataFolder()
{
    std::array<wchar_t, MAX_PATH> folder{};
    const bool known =
        SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, SHGFP_TYPE_DEFAULT, folder.data()) == S_OK;
    return known ? joined(utf8Text(folder.data()), libraryFolderName) : "c:";
}

std::string systemTemporaryFolder()
{
    std::array<wchar_t, MAX_PATH + 1> folder{};
    const DWORD length = GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
    return utf8Text({folder.data(), length > folder.size() ? 0 : length});
}

} // namespace Zorvan::platform
