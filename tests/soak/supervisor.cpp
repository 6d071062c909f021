#include "supervisor.h"

#include "support/programdata.h"

#include <array>
#include <atomic>
#include <cinttypes>
#include <csignal>
#include <cstdlib>
#include <execinfo.h>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Zorvan::soak {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::atomic<std::uint64_t> *s_beats = nullptr; // by actor, shared by both processes; 0: it rests
std::mutex s_countsLock;
std::map<std::string, std::uint64_t> s_counts; // guarded by it

void printStackOfThread(int /*signal*/)
{
    void *frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
    static_cast<void>(write(STDERR_FILENO, "--\n", 3));
}

/// Needs no debugger: each thread prints its own, and so do those of child processes.
void printStacks(pid_t process)
{
    for (const auto &thread :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
        syscall(SYS_tgkill, process, std::stoi(thread.path().filename()), SIGUSR2);
        std::this_thread::sleep_for(100ms);
        std::ifstream children(thread.path() / "children");
        for (pid_t child = 0; children >> child;)
            printStacks(child);
    }
}

struct Watched
{
    std::uint64_t beats = 0;
    Clock::time_point since{};
};

/// The actor that stands still; mostActors if all get on.
std::size_t standingActor(std::array<Watched, mostActors> &actors, std::chrono::seconds patience)
{
    for (std::size_t i = 0; i < mostActors; ++i) {
        const std::uint64_t beats = s_beats[i];
        if (beats == 0 || beats != actors[i].beats)
            actors[i] = {beats, Clock::now()};
        if (Clock::now() - actors[i].since >= patience)
            return i;
    }
    return mostActors;
}

/// Waits for the end of the child and returns its exit code.
int watch(pid_t process, std::chrono::seconds patience)
{
    std::array<Watched, mostActors> actors{};
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(process, &status, WNOHANG)) == 0) {
        std::this_thread::sleep_for(50ms);
        if (const std::size_t actor = standingActor(actors, patience); actor < mostActors) {
            std::fprintf(stderr, "FAILED: actor %zu stands still\n", actor);
            printStacks(process);
            kill(-process, SIGKILL); // its children too: they could stand still as well
            ended = waitpid(process, &status, 0);
            break;
        }
    }
    if (ended != process)
        std::fprintf(stderr, "FAILED: the child cannot be watched\n");
    else if (WIFSIGNALED(status))
        std::fprintf(stderr, "FAILED: ended by signal %d\n", WTERMSIG(status));
    return ended == process && WIFEXITED(status) ? WEXITSTATUS(status) : 99;
}

int playAndReport(const std::function<void()> &play)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    setpgid(0, 0);
    void *frame = nullptr;
    backtrace(&frame, 1); // loads what it needs: a signal handler must not
    std::signal(SIGUSR2, printStackOfThread);
    std::FILE *const report = fdopen(fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3), "w");
    const std::string output = ownFolder() + "/stdout";
    dup2(open(output.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600), STDOUT_FILENO);
    const auto start = Clock::now();
    play();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count();
    count("seconds", static_cast<std::uint64_t>(seconds));
    for (const auto &[name, times] : s_counts)
        std::fprintf(report, "%-60s %12" PRIu64 "\n", name.c_str(), times);
    std::fprintf(report, "%-60s %12" PRIu64 "\n", "faults", faults());
    std::fclose(report);
    return faults() == 0 ? 0 : 1;
}

} // namespace

int supervise(char **arguments, std::chrono::seconds patience, const std::function<void()> &play)
{
    test::restartWithOwnProgramData(arguments);
    void *const memory = mmap(nullptr, mostActors * sizeof *s_beats, PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    pid_t process = -1;
    if (memory != MAP_FAILED) {
        s_beats = new (memory) std::atomic<std::uint64_t>[mostActors] {};
        process = fork();
    }
    if (process == 0)
        return playAndReport(play);
    const int result = process > 0 ? watch(process, patience) : 99;
    if (process < 0)
        std::perror("FAILED: no child");
    test::removeOwnProgramData();
    return result;
}

std::string ownFolder()
{
    return std::filesystem::path(test::libraryFolder()).parent_path();
}

void beat(std::size_t actor)
{
    ++s_beats[actor];
}

void rest(std::size_t actor)
{
    s_beats[actor] = 0;
}

void count(const std::string &name, std::uint64_t times)
{
    const std::lock_guard guard(s_countsLock);
    if (times > 0)
        s_counts[name] += times;
}

std::uint64_t counted(const std::string &name)
{
    const std::lock_guard guard(s_countsLock);
    return s_counts[name];
}

std::uint64_t faults()
{
    const std::lock_guard guard(s_countsLock);
    std::uint64_t sum = 0;
    for (const auto &[name, times] : s_counts)
        sum += name.front() == '!' ? times : 0;
    return sum;
}

} // namespace Zorvan::soak
