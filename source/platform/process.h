#pragma once

/// Other processes, and the end of this one.

#include <string>
#include <vector>

namespace Zorvan::platform {

/// True if a living process has \a part in its program name (case-sensitive). Processes that have ended but
/// were not yet collected by their parent do not count; nor, on POSIX systems, those of users other than this
/// process's own and the administrator, who could pretend to be any program. False for a null or empty part.
/// Any thread.
[[nodiscard]] bool isProcessRunning(const char *part);

/// Starts \a program in a session of its own, with no standard input or output (Windows: those of a console
/// of its own), and forgets it: it neither becomes a zombie of this process nor ends with it. \a program
/// without a separator is looked for in the folder of this process's executable, then in PATH, never in the
/// current folder. The arguments are handed over as they are; no shell reads them. False: it could not be
/// started; with SIGCHLD ignored by the host that may go unnoticed if the program's file exists.
bool startDetached(const std::string &program, const std::vector<std::string> &arguments);

/// Ends this process at once with exit code 0: no destructors, no exit handlers.
[[noreturn]] void endThisProcess();

/// Folder of this process's executable, without a separator at its end; empty if unknown.
[[nodiscard]] std::string executableFolder();

/// Functions to run around fork(). prepare runs in the forking thread before the fork, parent and child after
/// it in the two processes. Call once per set, from code that stays loaded. Nothing happens where fork() does
/// not exist.
void aroundFork(void (*prepare)(), void (*parent)(), void (*child)());

} // namespace Zorvan::platform
