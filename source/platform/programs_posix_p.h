#pragma once

/// Finding and starting programs without a shell.

#include <spawn.h>
#include <string>
#include <vector>

namespace Zorvan::platform {

/// A regular file that this process may execute.
[[nodiscard]] bool isProgram(const std::string &path);
/// Folders in which programs are looked for by name: those of PATH but for relative ones, which would mean
/// another folder, perhaps a hostile one, after each change of the current folder.
[[nodiscard]] std::vector<std::string> programFolders();

/// Path of the executable file \a name in the first of \a folders that has it; empty if none has.
[[nodiscard]] std::string programIn(const std::vector<std::string> &folders, const std::string &name);

/// What a new program gets: the default signal handling, and of this process's open files only the standard
/// ones. Call in the order of the declarations.
class SpawnSettings
{
public:
    SpawnSettings();
    ~SpawnSettings();
    SpawnSettings(const SpawnSettings &) = delete;
    SpawnSettings &operator=(const SpawnSettings &) = delete;

    void ownSession();
    /// \a standard is 0, 1 or 2. Files come before nothing: the host's \a file may have one of these numbers.
    void replaceByFile(int standard, int file);
    void replaceByNothing(int standard);
    void closeOthers();
    /// \a arguments ends with a null pointer. The new process, or -1. Allocates nothing.
    pid_t spawn(const char *path, char *const *arguments);

private:
    posix_spawnattr_t m_attributes;
    posix_spawn_file_actions_t m_actions;
    short m_flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
};

/// \a path and \a arguments as spawn() takes them; valid as long as both are.
[[nodiscard]] std::vector<char *> argumentPointers(const std::string &path,
                                                   const std::vector<std::string> &arguments);

/// Waits for the end of \a child. Its exit code; -1 if it was killed, or collected by the host before.
int waitForEnd(pid_t child);

} // namespace Zorvan::platform
