#include "platform/folders_p.h"
#include "platform/programs_posix_p.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvan::platform {
bool isProgram(const std::string &path)
{
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

namespace {

bool isAbsolute(const std::string &path)
{
    return !path.empty() && path.front() == '/';
}

} // namespace

std::vector<std::string> programFolders()
{
    std::vector<std::string> folders;
    std::istringstream path(environmentValue("PATH"));
    for (std::string folder; std::getline(path, folder, ':');) {
        if (isAbsolute(folder))
            folders.push_back(folder);
    }
    return folders;
}

std::string programIn(const std::vector<std::string> &folders, const std::string &name)
{
    for (const std::string &folder : folders) {
        std::string path = joined(folder, name);
        if (isAbsolute(folder) && isProgram(path))
            return path;
    }
    return {};
}

SpawnSettings::SpawnSettings()
{
    posix_spawnattr_init(&m_attributes);
    posix_spawn_file_actions_init(&m_actions);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&m_attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&m_attributes, &signals);
}

SpawnSettings::~SpawnSettings()
{
    posix_spawn_file_actions_destroy(&m_actions);
    posix_spawnattr_destroy(&m_attributes);
}

void SpawnSettings::ownSession()
{
    m_flags |= POSIX_SPAWN_SETSID;
}

void SpawnSettings::replaceByFile(int standard, int file)
{
    posix_spawn_file_actions_adddup2(&m_actions, file, standard);
}

void SpawnSettings::replaceByNothing(int standard)
{
    posix_spawn_file_actions_addopen(&m_actions, standard, "/dev/null", O_RDWR, 0);
}

void SpawnSettings::closeOthers()
{
    posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
}

pid_t SpawnSettings::spawn(const char *path, char *const *arguments)
{
    posix_spawnattr_setflags(&m_attributes, m_flags);
    pid_t child = -1;
    return posix_spawn(&child, path, &m_actions, &m_attributes, arguments, environ) == 0 ? child : -1;
}

std::vector<char *> argumentPointers(const std::string &path, const std::vector<std::string> &arguments)
{
    // posix_spawn() asks for pointers to non-const, but promises not to write through them.
    std::vector<char *> pointers{const_cast<char *>(path.c_str())};
    for (const std::string &argument : arguments)
        pointers.push_back(const_cast<char *>(argument.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

int waitForEnd(pid_t child)
{
    int status = 0;
    pid_t ended = -1;
    do {
        ended = waitpid(child, &status, 0);
    } while (ended == -1 && errno == EINTR);
    return ended == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace Zorvan::platform
