#include "debug/outputgate.h"

#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"

namespace Zorvan {

namespace {

/// What has to be asked before the switches of the modules. Written with the module table locked.
struct Gate
{
    static constexpr unsigned anyActive = 1; ///< some module can print
    static constexpr unsigned smokeTestOff = 2; ///< the setting was read, and it is not smoke-test mode
    static constexpr unsigned changing = 4; ///< a change is half done: answers have to wait
    static constexpr unsigned open = anyActive | smokeTestOff;

    std::atomic<unsigned> bits{anyActive};
    std::atomic<bool> enabled{true}; ///< as the last setupOutputEnabled() said

    int changes = 0; ///< scopes inside each other; only touched with the table locked

    [[nodiscard]] bool has(unsigned mask) const { return (bits.load(std::memory_order_relaxed) & mask) != 0; }
};

Gate s_gate;

/// Only while the gate is open can the switches of the modules answer for themselves.
void changeGate(unsigned mask, bool on)
{
    const TableLock guard;
    const unsigned old = s_gate.bits.load(std::memory_order_relaxed);
    const unsigned bits = on ? old | mask : old & ~mask;
    s_gate.bits.store(bits, std::memory_order_relaxed);
    moduleTable().answerQuickly(bits == Gate::open);
}

/// The mode in which only critical messages pass. Read from the host's settings at the first question, never
/// again.
class SmokeTest
{
public:
    bool isOn()
    {
        // The answer counts as "off" while the host looks it up: its reader may print.
        State expected = State::Unread;
        if (m_state.load() == State::Unread && m_state.compare_exchange_strong(expected, State::Reading)) {
            const bool on = host::readInteger(QStringLiteral("doingSmokeTest"), 0) == 1;
            m_state.store(on ? State::On : State::Off);
        }
        return m_state.load() == State::On;
    }
    /// It is off for good: no need to ask again.
    [[nodiscard]] bool isSettledOff() const { return m_state.load() == State::Off; }

private:
    enum class State {
        Unread,
        Reading,
        Off,
        On,
    };
    std::atomic<State> m_state{State::Unread};
};

SmokeTest s_smokeTest;
SmokeTest s_smokeTestOfActiveLevel; // getActiveLevel() reads the setting for itself

bool isSmokeTest()
{
    const bool on = s_smokeTest.isOn();
    if (s_smokeTest.isSettledOff() && !s_gate.has(Gate::smokeTestOff))
        changeGate(Gate::smokeTestOff, true);
    return on;
}

bool anyModuleActive() ZORVAN_REQUIRES(moduleTable().lock())
{
    for (moduleId id = 0; id < moduleTable().count(); ++id) {
        const Module *const module = moduleTable().find(id);
        if (module->clippingLevel >= 0 && module->hasEnabledClass())
            return true;
    }
    return false;
}

/// The bits, read once a change that was under way is done.
unsigned settledGate()
{
    const unsigned bits = s_gate.bits.load(std::memory_order_relaxed);
    if ((bits & Gate::changing) == 0)
        return bits;
    const TableLock wait; // held by the changing thread, which passes itself
    return s_gate.bits.load(std::memory_order_relaxed);
}

enum class Found {
    NoTable,
    NoModule,
    Module,
};

/// Looks the module up, in one look at the table, and gives it a prefix if it has none.
Found askedAbout(moduleId id)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return ModuleTable::exists() ? Found::NoModule : Found::NoTable;
    if (module->inUse || id >= moduleTable().count()) // an id not handed out yet is left for a later module
        return Found::Module;
    moduleTable().takeIntoUse(id);
    guibridge::requestRebuild();
    return Found::Module;
}

/// Levels above the clipping level never pass, level 0 passes whatever its class.
bool passes(moduleId id, int level, int cls)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return !ModuleTable::exists();
    return level <= module->clippingLevel && (level == 0 || module->isClassEnabled(cls));
}

/// What the switches of the modules cannot answer alone: no table, a change under way, the first question
/// about a module, smoke-test mode, classes from 64 on.
[[gnu::noinline]] bool isActiveAtLength(moduleId id, int level, int cls)
{
    if ((settledGate() & Gate::anyActive) == 0)
        return false;
    if (const Found found = askedAbout(id); found != Found::Module)
        return found == Found::NoTable;
    return isSmokeTest() ? level == 0 : passes(id, level, cls);
}

} // namespace

void setupOutputEnabled(bool enable)
{
    const TableLock guard;
    s_gate.enabled.store(enable, std::memory_order_relaxed);
    // Found out first and stored once: other threads ask meanwhile.
    const bool active = enable && (!ModuleTable::exists() || anyModuleActive());
    changeGate(Gate::anyActive, active);
    if (active)
        guibridge::requestRebuild();
}

bool outputEnabled()
{
    return s_gate.enabled.load(std::memory_order_relaxed);
}

ChangeScope::ChangeScope()
{
    moduleTable().lock().lock();
    if (s_gate.changes++ == 0)
        changeGate(Gate::changing, true);
}

ChangeScope::~ChangeScope()
{
    if (--s_gate.changes == 0)
        changeGate(Gate::changing, false);
    moduleTable().lock().unlock();
    payAfterLines();
}

bool Debug::isActive(moduleId module, int level, int cls)
{
    return ModuleTable::quickSwitches().isActive(module, level, cls,
                                                 [=] { return isActiveAtLength(module, level, cls); });
}

int Debug::getActiveLevel(moduleId id, int cls)
{
    if ((settledGate() & Gate::anyActive) == 0)
        return 0;
    if (const Found found = askedAbout(id); found != Found::Module)
        return found == Found::NoTable ? 1 : -1;
    if (s_smokeTestOfActiveLevel.isOn())
        return 0;
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    return module && module->clippingLevel >= 0 && module->isClassEnabled(cls) ? module->clippingLevel : -1;
}

void Debug::setClientCount(int count)
{
    guibridge::setClientCount(count);
    if (count == 0)
        setupOutputEnabled(true);
}

} // namespace Zorvan
