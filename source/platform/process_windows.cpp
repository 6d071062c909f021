#include "platform/folders_p.h"
#include "platform/process.h"
#include "platform/text_windows_p.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <sstream>
// clang-format off
#include <windows.h>
#include <tlhelp32.h> // needs the one before
// clang-format on

namespace Zorvan::platform {
namespace {

using Handle = std::unique_ptr<void, decltype(&CloseHandle)>;

/// \a argument as the C run-time library of the new program splits it off again.
std::wstring quoted(const std::wstring &argument)
{
    std::wstring text(1, L'"');
    std::size_t backslashes = 0;
    for (const wchar_t c : argument) {
        // Backslashes count only before a quote: there each one is doubled, and one more protects the quote.
        if (c == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text.push_back(c);
    }
    text.append(backslashes, L'\\');
    return text + L'"';
}

std::wstring commandLine(const std::wstring &program, const std::vector<std::string> &arguments)
{
    std::wstring line = quoted(program);
    for (const std::string &argument : arguments)
        line += L' ' + quoted(wideText(argument));
    return line;
}

bool isAbsolute(const std::string &path)
{
    return path.size() > 2 && (path[1] == ':' || path.compare(0, 2, "\\\\") == 0);
}

/// Folder of the executable and those of PATH, without the relative ones that would depend on the current
/// folder.
std::string programFolders()
{
    std::string folders = executableFolder();
    std::istringstream path(environmentValue("PATH"));
    for (std::string folder; std::getline(path, folder, ';');) {
        if (isAbsolute(folder))
            folders += ';' + folder;
    }
    return folders;
}

std::wstring findProgram(const std::string &program)
{
    if (program.find_first_of("/\\:") != std::string::npos)
        return wideText(program);
    std::array<wchar_t, MAX_PATH> path{};
    const DWORD length = SearchPathW(wideText(programFolders()).c_str(), wideText(program).c_str(), L".exe",
                                     static_cast<DWORD>(path.size()), path.data(), nullptr);
    return length < path.size() ? std::wstring(path.data(), length) : std::wstring();
}

/// The system would run it by its shell, which reads the arguments in its own way.
bool isBatchFile(const std::wstring &path)
{
    const std::wstring extension = path.substr(path.size() - std::min<std::size_t>(path.size(), 4));
    return _wcsicmp(extension.c_str(), L".bat") == 0 || _wcsicmp(extension.c_str(), L".cmd") == 0;
}

} // namespace

bool isProcessRunning(const char *part)
{
    if (part == nullptr || *part == '\0')
        return false;
    const std::wstring widePart = wideText(part);
    const Handle processes(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0), &CloseHandle);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL found = Process32FirstW(processes.get(), &entry); found != 0;
         found = Process32NextW(processes.get(), &entry)) {
        if (std::wcsstr(entry.szExeFile, widePart.c_str()) != nullptr)
            return true;
    }
    return false;
}

bool startDetached(const std::string &program, const std::vector<std::string> &arguments)
{
    const std::wstring path = findProgram(program);
    if (path.empty() || isBatchFile(path))
        return false;
    std::wstring line = commandLine(path, arguments);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(path.c_str(), line.data(), nullptr, nullptr, FALSE,
                       CREATE_NEW_CONSOLE | CREATE_NEW_PROCESS_GROUP, nullptr, nullptr, &startup, &process)
        == 0)
        return false;
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
}

void endThisProcess()
{
    TerminateProcess(GetCurrentProcess(), 0);
    std::abort(); // not reached; the compiler does not know
}

std::string executableFolder()
{
    std::array<wchar_t, 1024> path{};
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length == 0 || length == path.size())
        return {};
    const std::string file = utf8Text({path.data(), length});
    return withoutEndSeparator(file.substr(0, file.rfind('\\') + 1));
}

void aroundFork(void (*)(), void (*)(), void (*)()) {}

} // namespace Zorvan::platform
