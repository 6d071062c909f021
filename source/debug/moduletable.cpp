#include "debug/moduletable.h"

#include "debugserverqueue/guibridge.h"
#include "lowlevelfunctions/systemlog.h"
#include "platform/process.h"

#include <algorithm>
#include <cstdint>

namespace Zorvan {

namespace {

struct PredefinedModule
{
    moduleId id;
    const char *name;
    const char *description;
};

constexpr PredefinedModule predefinedModules[] = {
    {0, "#DebugServer#", "DebugServer"},
    {1, "KLV-Startup", "Startup"},
    {2, "KLV-Kernel", "Kernel"},
    {3, "KLV-Gui", "Gui"},
    {4, "KLV-Database", "Database"},
    {5, "KLV-OrgLayer", "OrgLayer"},
    {6, "KLV-Unicod1", "Unicod1"},
    {7, "KLV-Unicod2", "Unicod2"},
    {8, "KLV-Unicod3", "Unicod3"},
    {9, "KLV-Unicod4", "Unicod4"},
    {10, "KLV-DACIF", "DACIF"},
    {11, "KLV-Utilities", "Utilities"},
    {12, "KLV-PlugIn", "PlugIn"},
    {13, "KLV-Scpi", "Scpi"},
    {14, "KLV-ListAdmin", "ListAdmin"},
    {15, "KLV-Sweep", "Sweep"},
    {16, "KLV-BBIN", "BBIN"},
    {17, "KLV-Fader", "Fader"},
    {18, "KLV-B12", "KLVB12"},
    {22, "Tarnel-BaseBoard", "Tarnel"},
    {23, "Ostrik-AMB", "Ostrik"},
    {24, "WAVEMILL2", "Wavemill2"},
};

void holdTable() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    moduleTable().lock().lock();
}

void releaseTable() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    moduleTable().lock().unlock();
}

void releaseTableInChild() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    moduleTable().lock().forgetWaiters();
    releaseTable();
}

/// A child of fork() finds the table unlocked and consistent. The table's lock is taken before those of the
/// road into the GUI thread and of the system log; the preparing functions run in the reverse order of their
/// registration.
const bool s_forkHandlersRegistered = [] {
    registerLowlevelForkHandlers();
    guibridge::registerForkHandlers();
    platform::aroundFork(holdTable, releaseTable, releaseTableInChild);
    return true;
}();

std::uint64_t classBits(const Module &module)
{
    std::uint64_t bits = 0;
    const auto end = module.classStates.lower_bound(64);
    for (auto state = module.classStates.lower_bound(0); state != end; ++state)
        bits |= std::uint64_t(state->second.enabled) << state->first;
    return bits;
}

void setPrefix(Module &module, std::size_t width)
{
    module.prefix = '<' + std::string(width - module.name.size(), ' ') + module.name + "> ";
}

} // namespace

namespace detail {
QuickLevel quickLevels[quickLevelCount];
} // namespace detail

QuickSwitches ModuleTable::s_quickSwitches{detail::quickLevels};

ModuleTable &moduleTable()
{
    static auto *table = new ModuleTable;
    return *table;
}

bool Module::hasEnabledClass() const
{
    const auto isEnabled = [](const auto &state) { return state.second.enabled; };
    return std::any_of(classStates.lower_bound(0), classStates.end(), isEnabled);
}

bool Module::isClassEnabled(int cls) const
{
    const auto state = classStates.find(cls);
    return state != classStates.end() && state->second.enabled;
}

void ModuleTable::build()
{
    clear();
    grow(predefinedCount);
    for (const PredefinedModule &predefined : predefinedModules) {
        Module &module = m_modules[static_cast<std::size_t>(predefined.id)];
        module.name = predefined.name;
        module.description = predefined.description;
    }
    TableState::setExists(true);
}

void ModuleTable::release()
{
    TableState::setExists(false);
    clear();
}

/// The table goes on to exist for those who ask without its lock: a reset is no end.
void ModuleTable::clear()
{
    s_quickSwitches.answerBelow(0);
    m_modules.clear();
    m_count = predefinedCount;
    m_prefixWidth = 0;
}

moduleId ModuleTable::add()
{
    if (!exists())
        return -1;
    if (m_count >= capacity())
        grow(2 * capacity());
    return m_count++;
}

void ModuleTable::grow(int capacity)
{
    const auto before = static_cast<moduleId>(m_modules.size());
    m_modules.resize(static_cast<std::size_t>(capacity));
    s_quickSwitches.makeRoom(capacity);
    for (moduleId id = before; id < capacity; ++id)
        switchesChanged(id);
    publishQuickCount();
}

void ModuleTable::switchesChanged(moduleId id)
{
    const Module &module = m_modules[static_cast<std::size_t>(id)];
    s_quickSwitches.set(id, module.inUse ? module.clippingLevel : QuickSwitches::notAsked, classBits(module));
}

void ModuleTable::answerQuickly(bool quickly)
{
    m_answersQuickly = quickly;
    publishQuickCount();
}

void ModuleTable::publishQuickCount()
{
    s_quickSwitches.answerBelow(m_answersQuickly ? capacity() : 0);
}

std::size_t ModuleTable::widestNameInUse() const
{
    std::size_t width = 0;
    for (const Module &module : m_modules)
        width = module.inUse ? std::max(width, module.name.size()) : width;
    return width;
}

void ModuleTable::takeIntoUse(moduleId id)
{
    Module &module = m_modules[static_cast<std::size_t>(id)];
    module.inUse = true;
    switchesChanged(id);
    refreshPrefix(module, std::max(m_prefixWidth, module.name.size()));
}

void ModuleTable::rename(moduleId id, const char *name)
{
    Module &module = m_modules[static_cast<std::size_t>(id)];
    const bool wasWidest = module.name.size() == m_prefixWidth;
    module.name = name;
    if (module.inUse)
        refreshPrefix(module, wasWidest ? widestNameInUse() : std::max(m_prefixWidth, module.name.size()));
}

/// Only a new width concerns the other modules.
void ModuleTable::refreshPrefix(Module &module, std::size_t width)
{
    if (width == m_prefixWidth) {
        setPrefix(module, width);
        return;
    }
    m_prefixWidth = width;
    for (Module &each : m_modules) {
        if (each.inUse)
            setPrefix(each, width);
    }
}

} // namespace Zorvan
