#include "lowlevelfunctions/daemonlockfile.h"

#include "platform/files.h"
#include "platform/folders.h"

#include <algorithm>
#include <charconv>

namespace Zorvan {

namespace {

constexpr std::size_t longestInstanceName = 1023; // bytes
constexpr std::size_t longestFile = 64 * 1024; // bytes

std::string_view trimmed(std::string_view text)
{
    const char *const blanks = " \t\r\v\f";
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// Splits off the text up to the next line end.
std::string_view takeLine(std::string_view &text)
{
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

/// 0 for what is no number or does not fit.
int numberIn(std::string_view line)
{
    const std::string_view digits = trimmed(line);
    const char *const end = digits.data() + digits.size();
    int number = 0;
    const std::from_chars_result result = std::from_chars(digits.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? number : 0;
}

} // namespace

DaemonLockFile parseDaemonLockFile(std::string_view content)
{
    DaemonLockFile file;
    file.parts = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n')) + 1;
    if (file.isComplete()) {
        file.daemonPort = numberIn(takeLine(content));
        file.secondPort = numberIn(takeLine(content));
    }
    return file;
}

DaemonLockFile readDaemonLockFile(const std::string &path)
{
    std::string content;
    return platform::readTrustedFile(path.c_str(), longestFile, content) ? parseDaemonLockFile(content)
                                                                         : DaemonLockFile();
}

std::string daemonInstanceName(std::string_view name)
{
    std::string safe(name.substr(0, longestInstanceName));
    for (char &c : safe) {
        if (c == '/' || c == '\\' || c == '\0')
            c = '_';
    }
    return safe;
}

std::string daemonLockFilePath(const std::string &instanceName)
{
    return platform::temporaryFolder() + platform::pathSeparator + "DebugDaemonRunning_" + instanceName
        + ".lock";
}

} // namespace Zorvan
