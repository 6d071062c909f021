#include "platform/folders_p.h"
#include "platform/messagebox.h"
#include "platform/process.h"
#include "platform/programs_posix_p.h"
#include "platform/standardoutput.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

// The system takes no argument of 128 KiB or more.
constexpr std::size_t longestArgument = 100 * 1024; // bytes

struct Outcome
{
    BoxAnswer answer = BoxAnswer::None;
    bool wasShown = false; ///< somebody saw the text
};

/// Takes the output of a program. Not a pipe: other threads of the host may fork at any time, and their
/// children would keep a pipe open, whose end we would wait for. A file in memory is complete once the
/// program has ended.
class OutputFile
{
public:
    OutputFile()
        : m_file(memfd_create("answer", MFD_CLOEXEC))
    {}
    ~OutputFile()
    {
        if (m_file >= 0)
            close(m_file);
    }
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    [[nodiscard]] int descriptor() const { return m_file; }
    [[nodiscard]] std::string start() const
    {
        std::array<char, 32> buffer{};
        const ssize_t length = pread(m_file, buffer.data(), buffer.size(), 0);
        return {buffer.data(), static_cast<std::size_t>(length < 0 ? 0 : length)};
    }

private:
    int m_file;
};

/// Runs a program to its end; what it printed. Its exit code tells nothing: it is lost if the host ignores or
/// collects its children.
std::string outputOf(const std::string &path, const std::vector<std::string> &arguments)
{
    const OutputFile output;
    SpawnSettings settings;
    settings.replaceByFile(STDOUT_FILENO, output.descriptor());
    settings.replaceByNothing(STDIN_FILENO);
    settings.closeOthers();
    const pid_t child = settings.spawn(path.c_str(), argumentPointers(path, arguments).data());
    if (child >= 0)
        waitForEnd(child);
    return output.start();
}

/// A program that says none of the words did not show the box.
Outcome outcomeOf(std::string word)
{
    word.resize(word.find_last_not_of(" \r\n") + 1);
    if (word == "abort" || word == "Abort")
        return {BoxAnswer::Abort, true};
    if (word == "retry" || word == "Retry")
        return {BoxAnswer::Retry, true};
    if (word == "ignore" || word == "Ignore")
        return {BoxAnswer::Ignore, true};
    return {BoxAnswer::None, word == "closed"};
}

/// Folder of the file this code is in: the library, or a program that contains it. Empty if unknown. The
/// dynamic linker only knows the path it was given, which may be relative to a folder left since.
std::string folderOfThisCode()
{
    const auto address = reinterpret_cast<std::uintptr_t>(&boxHelperName);
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> mappings(std::fopen("/proc/self/maps", "re"),
                                                                    std::fclose);
    std::array<char, PATH_MAX + 128> line{}; // the rest of a longer one looks like a line without addresses
    while (mappings != nullptr && std::fgets(line.data(), line.size(), mappings.get()) != nullptr) {
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        if (std::sscanf(line.data(), "%" SCNxPTR "-%" SCNxPTR, &begin, &end) != 2 || address < begin
            || address >= end)
            continue;
        const char *const path = std::strchr(line.data(), '/');
        return path == nullptr ? std::string() : std::string(path, std::strrchr(path, '/') + 1);
    }
    return {};
}

/// Of a text that is too long the middle is left out: the question is at its end.
std::string shownPart(std::string text)
{
    if (text.size() > longestArgument)
        text.replace(longestArgument / 2, text.size() - longestArgument, "\n... (cut) ...\n");
    std::replace(text.begin(), text.end(), '\0', ' '); // it would end the argument
    return text;
}

Outcome askHelper(const std::string &title, const std::string &text)
{
    const std::string library = folderOfThisCode();
    const std::string path = programIn(
        {environmentValue("ZORVAN_HELPERS"), library, joined(library, "zorvandebug"), executableFolder()},
        boxHelperName);
    if (path.empty())
        return {};
    return outcomeOf(outputOf(path, {title, text}));
}

Outcome askXmessage(const std::string &title, const std::string &text)
{
    const std::string path = programIn(programFolders(), "xmessage");
    if (path.empty())
        return {};
    // A text that begins with '-' would be taken for an option.
    const std::string shownText = text.rfind('-', 0) == 0 ? ' ' + text : text;
    return outcomeOf(
        outputOf(path, {"-center", "-print", "-title", title, "-buttons", "Abort,Retry,Ignore", shownText}));
}

bool hasDisplay()
{
    return !environmentValue("DISPLAY").empty() || !environmentValue("WAYLAND_DISPLAY").empty();
}

Outcome ask(const std::string &title, const std::string &text)
{
    if (!hasDisplay())
        return {};
    const Outcome outcome = askHelper(title, text);
    return outcome.wasShown ? outcome : askXmessage(title, text);
}

} // namespace

const char *const boxHelperName = "zorvan-messagebox";

BoxAnswer nativeMessageBox(const std::string &title, const std::string &text)
{
    const Outcome outcome = ask(shownPart(title), shownPart(text));
    if (!outcome.wasShown)
        writeStandardError(title + ": " + text + '\n');
    return outcome.answer;
}

} // namespace Zorvan::platform
