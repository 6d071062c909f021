#include "instrument.h"
#include "supervisor.h"
#include "support/programdata.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zorvan::soak {

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
constexpr std::size_t askers = 4;
constexpr int good = 0, notKilled = 50, lostOrDoubled = 51; // exit codes
constexpr int releaseAssertEnabled = 2, hasGraphicalGui = 3, systemLogSize = 6; // properties

void prepare()
{
    std::filesystem::create_symlink(DAEMON, ownFolder() + "/DebugDaemon");
    setenv("TEMP", ownFolder().c_str(), 1);
    setenv("PATH", (ownFolder() + ":/usr/bin:/bin").c_str(), 1);
    setenv("DAEMON_LOCKFILE", "%\n5001\n", 1);
    setenv("DAEMON_ANSWERS", "16384", 1);
    setenv("ZORVAN_HELPERS", ownFolder().c_str(), 1); // without a box of the system
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    setLowlevelIntegerProperty(releaseAssertEnabled, 1);
    setLowlevelIntegerProperty(hasGraphicalGui, 1);
    setLowlevelIntegerProperty(systemLogSize, 100'000'000); // bytes
}

/// How often each failure stands in the system log.
std::map<std::string, int> failuresInLog()
{
    std::map<std::string, int> times;
    const std::string log = test::readFile(test::libraryFile("GYX-syslog-0.log"));
    for (std::size_t place = log.find('{'); place != std::string::npos; place = log.find('{', place + 1))
        ++times[log.substr(place, log.find('}', place) + 1 - place)];
    return times;
}

/// Kills the daemon when it has answered some times, and looks how the askers get on without it.
bool killDaemon()
{
    const auto end = Clock::now() + 15s;
    while (test::readFile(ownFolder() + "/received-1").size() < 1000 && Clock::now() < end)
        std::this_thread::sleep_for(5ms);
    const pid_t daemon = std::atoi(test::readFile(ownFolder() + "/pid").c_str());
    const bool isKilled = Clock::now() < end && daemon > 0 && kill(daemon, SIGKILL) == 0;
    std::this_thread::sleep_for(100ms);
    return isKilled;
}

/// Returns the exit code.
int askAndKill()
{
    std::atomic<bool> stop{false};
    std::vector<std::string> failures[askers];
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < askers; ++i) {
        threads.emplace_back([&, i] {
            for (beat(i); !stop; beat(i)) {
                failures[i].push_back("{" + std::to_string(i) + "/" + std::to_string(failures[i].size())
                                      + "}");
                gyxAssert(QString::fromStdString(failures[i].back()), QStringLiteral("soak"), "soak.cpp", 1);
                std::this_thread::sleep_for(2ms);
            }
            rest(i);
        });
    }
    int result = killDaemon() ? good : notKilled;
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
    const std::map<std::string, int> times = failuresInLog();
    for (const auto &ofThread : failures) {
        for (const std::string &failure : ofThread) {
            if (times.count(failure) == 0 || times.at(failure) != 1)
                result = lostOrDoubled;
        }
    }
    return result;
}

/// In a process of its own, because a process connects to a daemon only once.
void playLife()
{
    const pid_t process = fork();
    if (process == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        // The questions where there is no daemon are not for the reader; a sanitizer's report is.
        const int errors = dup(STDERR_FILENO);
        dup2(open((ownFolder() + "/notices").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600), STDERR_FILENO);
        const int result = askAndKill();
        dup2(errors, STDERR_FILENO);
        std::exit(result);
    }
    int status = 0;
    const bool hasEnded = process > 0 && waitpid(process, &status, 0) == process && WIFEXITED(status);
    const int result = hasEnded ? WEXITSTATUS(status) : -1;
    count(result == good                ? "daemons killed"
              : result == notKilled     ? "!no daemon was killed"
              : result == lostOrDoubled ? "!assertions lost or doubled"
                                        : "!those who asked came to a bad end");
    for (const auto &[failure, times] : failuresInLog())
        count("assertions in the log", static_cast<std::uint64_t>(times));
    // The next process would take the killed daemon's port while any other daemon of the machine runs.
    for (const char *const file : {"/DebugDaemonRunning_assertion.lock", "/received-1", "/pid"})
        std::filesystem::remove(ownFolder() + file);
    std::filesystem::remove(test::libraryFile("GYX-syslog-0.log"));
}

} // namespace

void playDaemons(std::chrono::milliseconds length)
{
    prepare();
    const auto end = Clock::now() + length;
    do
        playLife();
    while (Clock::now() < end);
}

} // namespace Zorvan::soak
