#include "platform/standardoutput.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

/// Keeps SIGPIPE from the calling thread. One that came meanwhile is taken away; one that was waiting before
/// belongs to the host and stays.
class BrokenPipeSilenced
{
public:
    BrokenPipeSilenced()
    {
        sigset_t pending;
        sigpending(&pending);
        m_wasPending = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&m_signal);
        sigaddset(&m_signal, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_signal, &m_before);
    }
    ~BrokenPipeSilenced()
    {
        const timespec noTime{};
        while (!m_wasPending && sigtimedwait(&m_signal, nullptr, &noTime) < 0 && errno == EINTR) {}
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }
    BrokenPipeSilenced(const BrokenPipeSilenced &) = delete;
    BrokenPipeSilenced &operator=(const BrokenPipeSilenced &) = delete;

private:
    sigset_t m_signal;
    sigset_t m_before;
    bool m_wasPending;
};

} // namespace

// One lock for both calls, which would otherwise take it each for itself.
void writeStandardOutput(std::string_view bytes)
{
    flockfile(stdout);
    fwrite_unlocked(bytes.data(), 1, bytes.size(), stdout);
    fflush_unlocked(stdout);
    funlockfile(stdout);
}

void writeStandardError(std::string_view bytes)
{
    const BrokenPipeSilenced silenced;
    while (!bytes.empty()) {
        const ssize_t written = write(STDERR_FILENO, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace Zorvan::platform
