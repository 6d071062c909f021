#include "debug/moduletable.h"

#include "lowlevelfunctions/systemlog.h"
#include "platform/process.h"

#include <algorithm>

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

/// A child of fork() finds the table unlocked and consistent. The table's lock is taken before those of the system
/// log; the preparing functions run in the reverse order of their registration.
const bool s_forkHandlersRegistered = [] {
    registerLowlevelForkHandlers();
    platform::aroundFork(holdTable, releaseTable, releaseTable);
    return true;
}();

} // namespace

ModuleTable ModuleTable::s_instance;

void ModuleTable::build()
{
    makeRecords(predefinedCount);
    for (moduleId id = 0; id < predefinedCount; ++id)
        resetRecord(id);
    for (const PredefinedModule &predefined : predefinedModules) {
        Module &module = recordAt(predefined.id).module;
        module.name = predefined.name;
        module.description = predefined.description;
    }
    m_count.store(predefinedCount, std::memory_order_relaxed);
    m_capacity.store(predefinedCount, std::memory_order_release);
}

void ModuleTable::release()
{
    const int capacityBefore = capacity();
    m_capacity.store(0, std::memory_order_release);
    m_count.store(predefinedCount, std::memory_order_relaxed);
    for (moduleId id = 0; id < capacityBefore; ++id)
        resetRecord(id);
}

moduleId ModuleTable::add()
{
    if (!exists())
        return -1;
    const moduleId id = count();
    if (id >= capacity()) {
        const int oldCapacity = capacity();
        makeRecords(2 * oldCapacity);
        for (moduleId fresh = oldCapacity; fresh < 2 * oldCapacity; ++fresh)
            resetRecord(fresh);
        m_capacity.store(2 * oldCapacity, std::memory_order_release);
    }
    m_count.store(id + 1, std::memory_order_relaxed);
    return id;
}

void ModuleTable::rebuildPrefixes()
{
    const moduleId end = count();
    std::size_t width = 0;
    for (moduleId id = 0; id < end; ++id) {
        if (recordAt(id).switches.inUse.load(std::memory_order_relaxed))
            width = std::max(width, recordAt(id).module.name.size());
    }
    constexpr std::size_t frameSize = sizeof "<> " - 1;
    for (moduleId id = 0; id < end; ++id) {
        Module &module = recordAt(id).module;
        const bool fits = module.prefix.size() == width + frameSize;
        if (recordAt(id).switches.inUse.load(std::memory_order_relaxed) && !fits)
            module.prefix = '<' + std::string(width - module.name.size(), ' ') + module.name + "> ";
    }
}

void ModuleTable::makeRecords(int capacity)
{
    int records = 0;
    for (int chunk = 0; records < capacity; ++chunk) {
        const int size = 1 << (static_cast<int>(firstChunkBits) + chunk);
        std::atomic<Record *> &pointer = m_chunks[static_cast<std::size_t>(chunk)];
        if (pointer.load(std::memory_order_relaxed) == nullptr)
            pointer.store(new Record[static_cast<std::size_t>(size)], std::memory_order_release);
        records += size;
    }
}

void ModuleTable::resetRecord(moduleId id)
{
    Record &record = recordAt(id);
    record.switches.inUse.store(false, std::memory_order_relaxed);
    record.switches.clippingLevel.store(0, std::memory_order_relaxed);
    record.switches.enabledClasses.store(0, std::memory_order_relaxed);
    record.module = Module();
    record.module.name = "Please call setModuleDescription()";
    record.module.description = "unnamedModule";
}

} // namespace Zorvan
