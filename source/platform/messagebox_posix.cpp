#include "platform/folders_p.h"
#include "platform/messagebox.h"
#include "platform/process.h"
#include "platform/programs_posix_p.h"

#include <array>
#include <cerrno>
#include <dlfcn.h>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

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

/// Runs a program to its end; its exit code, -1 if unknown.
int runProgram(const std::string &path, const std::vector<std::string> &arguments, const OutputFile &output)
{
    SpawnSettings settings;
    settings.replaceByFile(STDOUT_FILENO, output.descriptor());
    settings.replaceByNothing(STDIN_FILENO);
    settings.closeOthers();
    const pid_t child = settings.spawn(path.c_str(), argumentPointers(path, arguments).data());
    return child < 0 ? -1 : waitForEnd(child);
}

BoxAnswer answerOf(std::string word)
{
    word.resize(word.find_last_not_of(" \r\n") + 1);
    if (word == "abort")
        return BoxAnswer::Abort;
    if (word == "retry")
        return BoxAnswer::Retry;
    return word == "ignore" ? BoxAnswer::Ignore : BoxAnswer::None;
}

/// Folder of the file this code is in: the library, or a program that contains it. Empty if unknown.
std::string folderOfThisCode()
{
    Dl_info info{};
    if (dladdr(&boxHelperName, &info) == 0 || info.dli_fname == nullptr)
        return {};
    const std::string_view file(info.dli_fname);
    return std::string(file.substr(0, file.rfind('/') + 1));
}

Outcome askHelper(const std::string &title, const std::string &text)
{
    const std::string library = folderOfThisCode();
    const std::string path = programIn(
        {environmentValue("ZORVAN_HELPERS"), library, joined(library, "zorvandebug"), executableFolder()},
        boxHelperName);
    if (path.empty())
        return {};
    const OutputFile output;
    const int exitCode = runProgram(path, {title, text}, output);
    const BoxAnswer answer = answerOf(output.start());
    return {answer, answer != BoxAnswer::None || exitCode == 0};
}

Outcome askXmessage(const std::string &title, const std::string &text)
{
    const std::string path = programIn(programFolders(), "xmessage");
    if (path.empty())
        return {};
    // A text that begins with '-' would be taken for an option.
    const std::string shownText = text.rfind('-', 0) == 0 ? ' ' + text : text;
    const int exitCode =
        runProgram(path, {"-center", "-title", title, "-buttons", "Abort:3,Retry:4,Ignore:5", shownText}, {});
    switch (static_cast<BoxAnswer>(exitCode)) {
    case BoxAnswer::Abort:
    case BoxAnswer::Retry:
    case BoxAnswer::Ignore:
        return {static_cast<BoxAnswer>(exitCode), true};
    case BoxAnswer::None:
        return {BoxAnswer::None, true};
    }
    return {};
}

bool hasDisplay()
{
    return !environmentValue("DISPLAY").empty() || !environmentValue("WAYLAND_DISPLAY").empty();
}

void writeToStandardError(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
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
    const Outcome outcome = ask(title, text);
    if (!outcome.wasShown)
        writeToStandardError(title + ": " + text + '\n');
    return outcome.answer;
}

} // namespace Zorvan::platform
