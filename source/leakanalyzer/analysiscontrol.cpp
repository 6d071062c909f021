#include "leakanalyzer/analysiscontrol.h"

#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/insideanalyzer.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/methodtiming.h"
#include "leakanalyzer/newblocks.h"
#include "lowlevelfunctions/lowlevelproperties.h"
#include "platform/process.h"

namespace Zorvan::analysis {

namespace detail {
std::atomic<bool> s_isRunning{false};
ZORVAN_THREAD_WORD bool s_isInside = false;
} // namespace detail

namespace {

constexpr int notRead = -1;

/// A property that is read once: whoever changes it directly later on is not seen. Usable before static
/// objects are built.
class CachedProperty
{
public:
    constexpr explicit CachedProperty(LowlevelProperty property)
        : m_property(property)
    {}

    int value()
    {
        int value = m_value.load(std::memory_order_relaxed);
        if (value == notRead) {
            const int stored = lowlevelProperty(m_property, 0);
            if (m_value.compare_exchange_strong(value, stored)) // else somebody has set another one meanwhile
                value = stored;
        }
        return value;
    }

    int exchange(int state)
    {
        if (state < 0)
            return value();
        m_value.store(state, std::memory_order_relaxed);
        setLowlevelIntegerProperty(static_cast<int>(m_property), state);
        return state;
    }

private:
    const LowlevelProperty m_property;
    std::atomic<int> m_value{notRead};
};

CachedProperty s_toolsEnabled{LowlevelProperty::analyzingToolsEnabled};
CachedProperty s_startupAnalysis{LowlevelProperty::analyzingOnStartup};

void holdForFork() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    if (!isRunning())
        return;
    analyzerLock().lock();
    holdReleasesForFork();
    holdOutputForFork();
}

void release() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    if (!isRunning())
        return;
    releaseOutput();
    releaseReleases();
    analyzerLock().unlock();
}

void releaseInChild() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    if (!isRunning())
        return;
    releaseOutputInChild();
    releaseReleases();
    analyzerLock().unlock();
    forgetOtherThreadsLocks();
}

} // namespace

simpleCASMutex &analyzerLock()
{
    static auto *const lock = new simpleCASMutex; // never destroyed: methods are measured until the very end
    return *lock;
}

void registerForkHandlers()
{
    prepareNewBlocks(); // whose lock may be taken under the others
    platform::aroundFork(holdForFork, release, releaseInChild);
}

void start()
{
    if (s_toolsEnabled.value() != 1 || isRunning())
        return;
    emitText(analyzerSource, __LINE__, "****************************** activating runtime\n");
    {
        const InsideAnalyzer guard;
        prepareTiming();
        prepareLeakTracking();
    }
    detail::s_isRunning.store(true, std::memory_order_release);
    if (s_startupAnalysis.value() != 1)
        return;
    emitText(analyzerSource, __LINE__, "****************************** activating startup analysis\n");
    setMemoryTracking(lowlevelProperty(LowlevelProperty::memTrackingEnabled, 1));
    setTimeTracking(lowlevelProperty(LowlevelProperty::timeTrackingEnabled, 1));
}

int toolsEnabled(int state)
{
    return s_toolsEnabled.exchange(state);
}

int startupAnalysis(int state)
{
    return s_startupAnalysis.exchange(state);
}

} // namespace Zorvan::analysis
