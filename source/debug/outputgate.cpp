#include "debug/outputgate.h"

#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"

namespace Zorvan {

namespace {

/// The switches that every isActive() reads, alone on their cache line.
struct alignas(64) Gate
{
    static constexpr unsigned anyActive = 1;    ///< some module can print
    static constexpr unsigned smokeTestOff = 2; ///< the setting was read, and it is not smoke-test mode
    static constexpr unsigned open = anyActive | smokeTestOff;

    std::atomic<unsigned> bits{anyActive};
    std::atomic<bool> outputEnabled{true};

    void set(unsigned mask, bool on)
    {
        if (on)
            bits.fetch_or(mask, std::memory_order_relaxed);
        else
            bits.fetch_and(~mask, std::memory_order_relaxed);
    }
    [[nodiscard]] unsigned load() const { return bits.load(std::memory_order_relaxed); }
};

Gate s_gate;

/// The mode in which only critical messages pass. Read from the host's settings at the first question, never again.
class SmokeTest
{
public:
    bool isOn()
    {
        // The answer counts as "off" while the host looks it up: its reader may print.
        State expected = State::Unread;
        if (m_state.compare_exchange_strong(expected, State::Reading)) {
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
    if (s_smokeTest.isSettledOff())
        s_gate.set(Gate::smokeTestOff, true);
    return on;
}

bool hasEnabledClass(const Module &module)
{
    for (auto state = module.classStates.lower_bound(0); state != module.classStates.end(); ++state) {
        if (state->second.enabled)
            return true;
    }
    return false;
}

bool anyModuleActive(ModuleTable &table) ZORVAN_REQUIRES(table.lock())
{
    for (moduleId id = 0; id < table.count(); ++id) {
        const Module *const module = table.find(id);
        if (module && table.switches(id)->clippingLevel.load(std::memory_order_relaxed) >= 0
            && hasEnabledClass(*module))
            return true;
    }
    return false;
}

bool isClassEnabled(moduleId id, const ModuleSwitches &switches, int cls)
{
    if (static_cast<unsigned>(cls) < 64)
        return (switches.enabledClasses.load(std::memory_order_relaxed) >> cls & 1U) != 0;
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    const Module *const module = table.find(id);
    if (module == nullptr)
        return false;
    const auto state = module->classStates.find(cls);
    return state != module->classStates.end() && state->second.enabled;
}

/// Levels above the clipping level never pass, level 0 passes whatever its class.
bool passesModule(moduleId id, const ModuleSwitches &switches, int level, int cls)
{
    if (level > switches.clippingLevel.load(std::memory_order_relaxed))
        return false;
    return level == 0 || isClassEnabled(id, switches, cls);
}

/// isActive() without a table, for the first question about a module, and in smoke-test mode.
bool isActiveAtLength(moduleId id, int level, int cls)
{
    ModuleTable &table = moduleTable();
    const ModuleSwitches *const switches = table.switches(id);
    if (switches == nullptr)
        return !table.exists();
    markInUse(id);
    return isSmokeTest() ? level == 0 : passesModule(id, *switches, level, cls);
}

} // namespace

void markInUse(moduleId id)
{
    ModuleTable &table = moduleTable();
    ModuleSwitches *const switches = table.switches(id);
    if (switches == nullptr || switches->inUse.load(std::memory_order_relaxed))
        return;
    const platform::Locked guard(table.lock());
    if (id >= table.count() || table.switches(id) == nullptr)
        return; // a later module will take the id
    switches->inUse.store(true, std::memory_order_relaxed);
    table.rebuildPrefixes();
    guibridge::requestRebuild();
}

void setOutputEnabled(bool enable)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    s_gate.outputEnabled.store(enable, std::memory_order_relaxed);
    // Stored once, not cleared first: other threads ask meanwhile.
    const bool active = enable && (!table.exists() || anyModuleActive(table));
    s_gate.set(Gate::anyActive, active);
    if (!active)
        return;
    table.rebuildPrefixes();
    guibridge::requestRebuild();
}

bool isOutputEnabled()
{
    return s_gate.outputEnabled.load(std::memory_order_relaxed);
}

void resetOutputGate()
{
    s_gate.outputEnabled.store(true, std::memory_order_relaxed);
    s_gate.set(Gate::anyActive, true);
}

bool Debug::isActive(moduleId module, int level, int cls)
{
    const unsigned gate = s_gate.load();
    if ((gate & Gate::anyActive) == 0)
        return false;
    const ModuleSwitches *const switches = moduleTable().switches(module);
    if (gate != Gate::open || switches == nullptr || !switches->inUse.load(std::memory_order_relaxed))
        return isActiveAtLength(module, level, cls);
    return passesModule(module, *switches, level, cls);
}

int Debug::getActiveLevel(moduleId module, int cls)
{
    if ((s_gate.load() & Gate::anyActive) == 0)
        return 0;
    ModuleTable &table = moduleTable();
    const ModuleSwitches *const switches = table.switches(module);
    if (switches == nullptr)
        return table.exists() ? -1 : 1;
    markInUse(module);
    if (s_smokeTestOfActiveLevel.isOn())
        return 0;
    const int level = switches->clippingLevel.load(std::memory_order_relaxed);
    return level >= 0 && isClassEnabled(module, *switches, cls) ? level : -1;
}

void Debug::setupOutputEnabled(bool enable)
{
    setOutputEnabled(enable);
}

bool Debug::outputEnabled()
{
    return isOutputEnabled();
}

} // namespace Zorvan
