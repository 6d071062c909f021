#include "platform/files.h"
#include "platform/folders_p.h"
#include "platform/process.h"
#include "platform/programs_posix_p.h"

#include <array>
#include <csignal>
#include <dirent.h>
#include <memory>
#include <pthread.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

struct ProcessStatus
{
    std::string name; ///< the first 15 characters, as the kernel keeps them
    char state = 'X';
};

std::string processFile(const char *id, const char *name)
{
    constexpr std::size_t limitBytes = 16 * 1024;
    std::string content;
    readFileStart(("/proc/" + std::string(id) + '/' + name).c_str(), limitBytes, content);
    return content;
}

/// From "12 (name) S …". The name may contain parentheses itself.
ProcessStatus processStatus(const char *id)
{
    const std::string stat = processFile(id, "stat");
    const std::size_t open = stat.find('(');
    const std::size_t close = stat.rfind(')');
    if (open == std::string::npos || close < open || close + 2 >= stat.size())
        return {};
    return {stat.substr(open + 1, close - open - 1), stat[close + 2]};
}

std::string fileName(const std::string &path)
{
    return path.substr(path.rfind('/') + 1);
}

/// A script is an argument of its interpreter, after one option at most, and the kernel names the process
/// after it.
bool isScript(const std::string &argument, const ProcessStatus &status)
{
    return !status.name.empty() && argument.compare(0, status.name.size(), status.name) == 0;
}

/// Looks for \a part in the full name, which only the command line has if it is longer than 15 characters.
bool commandLineHas(const char *id, const ProcessStatus &status, const char *part)
{
    std::istringstream commandLine(processFile(id, "cmdline"));
    std::string argument;
    for (int i = 0; i < 3 && std::getline(commandLine, argument, '\0'); ++i) {
        const std::string name = fileName(argument);
        if ((i == 0 || isScript(name, status)) && name.find(part) != std::string::npos)
            return true;
    }
    return false;
}

/// Another user's process could have any name; it must not be taken for a program of this one.
bool isTrusted(const char *id)
{
    struct stat status;
    return stat(("/proc/" + std::string(id)).c_str(), &status) == 0
        && (status.st_uid == 0 || status.st_uid == geteuid());
}

bool isRunning(const char *id, const char *part)
{
    const ProcessStatus status = processStatus(id);
    if (status.state == 'Z' || status.state == 'X')
        return false;
    return (status.name.find(part) != std::string::npos || commandLineHas(id, status, part)) && isTrusted(id);
}

/// Keeps the host's signal handlers out of the child of a fork.
class AllSignalsBlocked
{
public:
    AllSignalsBlocked()
    {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked &) = delete;
    AllSignalsBlocked &operator=(const AllSignalsBlocked &) = delete;

private:
    sigset_t m_before;
};

std::string findProgram(const std::string &program)
{
    if (program.find('/') != std::string::npos)
        return isProgram(program) ? program : std::string();
    std::vector<std::string> folders = programFolders();
    folders.insert(folders.begin(), executableFolder());
    return programIn(folders, program);
}

} // namespace

bool isProcessRunning(const char *part)
{
    if (part == nullptr || *part == '\0')
        return false;
    const std::unique_ptr<DIR, int (*)(DIR *)> processes(opendir("/proc"), closedir);
    if (processes == nullptr)
        return false;
    while (const dirent *entry = readdir(processes.get())) {
        const char first = entry->d_name[0];
        if (first >= '0' && first <= '9' && isRunning(entry->d_name, part))
            return true;
    }
    return false;
}

// The program is started by a child that ends at once, so that the system's first process adopts and collects
// it. _Fork() leaves out the host's fork handlers: they may wait for locks, and the child does nothing that
// needs them. It ends by the system call itself, for the same reason: ThreadSanitizer takes locks in _exit().
// Files that others may write are not trusted: the program makes none, whatever the host's mask is.
bool startDetached(const std::string &program, const std::vector<std::string> &arguments)
{
    constexpr int notStarted = 1;
    const std::string path = findProgram(program);
    if (path.empty())
        return false;
    const std::vector<char *> pointers = argumentPointers(path, arguments);
    SpawnSettings settings;
    settings.ownSession();
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        settings.replaceByNothing(standard);
    settings.closeOthers();

    const AllSignalsBlocked blocked;
    const pid_t child = _Fork();
    if (child == 0) {
        umask(umask(S_IWGRP | S_IWOTH) | S_IWGRP | S_IWOTH);
        syscall(SYS_exit_group, settings.spawn(path.c_str(), pointers.data()) > 0 ? 0 : notStarted);
    }
    return child > 0 && waitForEnd(child) != notStarted;
}

void endThisProcess()
{
    _exit(0);
}

std::string executableFolder()
{
    std::array<char, 4096> path{};
    const ssize_t length = readlink("/proc/self/exe", path.data(), path.size());
    if (length <= 0)
        return {};
    const std::string_view file(path.data(), static_cast<std::size_t>(length));
    return withoutEndSeparator(std::string(file.substr(0, file.rfind('/') + 1)));
}

void aroundFork(void (*prepare)(), void (*parent)(), void (*child)())
{
    pthread_atfork(prepare, parent, child);
}

} // namespace Zorvan::platform
