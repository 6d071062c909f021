#include "faults.h"

#include "threadnames.h"

#include <atomic>
#include <csignal>
#include <unistd.h>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

constexpr unsigned patienceSeconds = 5;

std::atomic<pid_t> s_faultyThread{0}; // the first one
std::atomic<int> s_fault{0}; // its signal

void letThrough(int signal)
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, signal);
    pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

/// Exit status and core dump are those of the first fault. Any thread, also as the handler of the alarm.
void endByFirstFault(int)
{
    const int fault = s_fault;
    std::signal(fault, SIG_DFL);
    std::raise(fault);
    letThrough(fault);
}

/// Handler of all faults. Little is allowed in here: the alarm ends a dump that hangs.
void writeHistory(int signal)
{
    pid_t first = 0;
    if (!s_faultyThread.compare_exchange_strong(first, gettid())) {
        if (first == gettid())
            endByFirstFault(0); // the dump itself has failed
        for (;;)
            pause(); // the first one ends the process
    }
    s_fault = signal;
    std::signal(SIGALRM, endByFirstFault); // whoever started this program may have had it ignored, or blocked
    letThrough(SIGALRM);
    alarm(patienceSeconds);
    Zorvan::dumpLogHistory();
    endByFirstFault(0);
}

/// A handler's stack for this thread: its own one may be what has run out.
void provideSpareStack()
{
    static char spare[64 * 1024];
    stack_t stack{};
    stack.ss_sp = spare;
    stack.ss_size = sizeof spare;
    sigaltstack(&stack, nullptr);
}

void assertionActivated(char *, char *parameters)
{
    setThreadName("hook");
    const bool allIsWell = false;
    // The system log takes the message for a format.
    ZORVAN_ASSERT(allIsWell, QString::fromLatin1(parameters).replace(QLatin1Char('%'), QLatin1String("%%")));
}

} // namespace

void writeHistoryOnFault()
{
    provideSpareStack();
    struct sigaction action = {};
    action.sa_handler = writeHistory;
    action.sa_flags = SA_ONSTACK;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        sigaction(signal, &action, nullptr);
}

void FaultHooks::CrashHook::hookActivated(char *key, char *)
{
    ZORVAN_TRACE("%s was activated", key);
    std::raise(SIGSEGV);
}

FaultHooks::FaultHooks()
{
    Debug::installHook(crash, &m_crashHook, true);
    Debug::installCHookHandler(assertion, assertionActivated);
}

FaultHooks::~FaultHooks()
{
    Debug::removeCHookHandler(assertion, assertionActivated);
    Debug::removeHook(crash, &m_crashHook);
}

} // namespace SignalGenerator
