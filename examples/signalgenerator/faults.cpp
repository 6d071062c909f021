#include "faults.h"

#include "threadnames.h"

#include <csignal>
#include <unistd.h>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

constexpr unsigned patienceSeconds = 5;

// Little is allowed in here. A fault inside of it, and an alarm after a hang, end the process.
void writeHistory(int signal)
{
    std::signal(signal, SIG_DFL);
    alarm(patienceSeconds);
    Zorvan::dumpLogHistory();
    std::raise(signal); // comes when this returns
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
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        std::signal(signal, writeHistory);
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
