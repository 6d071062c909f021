#pragma once

#include "debug/descriptions.h"
#include "platform/lock.h"

#include <zorvan/debug.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <map>
#include <string>

namespace Zorvan {

constexpr moduleId libraryModule = 0; ///< prints the library's own notices

/// State of one message class of a module. Entries come with the first enable or disable and stay.
struct DebugClass
{
    bool enabled = true;
};

/// What isActive() reads, from any thread and without a lock; written with the table locked.
struct ModuleSwitches
{
    std::atomic<bool> inUse{false};               ///< somebody asked about the module: it has a prefix
    std::atomic<int> clippingLevel{0};            ///< highest level let through
    std::atomic<std::uint64_t> enabledClasses{0}; ///< bit n: class n is enabled; classes 0 to 63
};

/// The rest of a module, guarded by the table's lock.
struct Module
{
    std::string name;
    std::string prefix; ///< "<", padding, name, "> "; empty until the module is in use
    std::string description;
    const Descriptions *levels = Descriptions::none();
    const Descriptions *classes = Descriptions::none();
    std::map<int, DebugClass> classStates; ///< by class; -1 and -2 can occur and are no classes
    OutputReceiver receiver = nullptr;
};

/// All modules by their ids.
///
/// Records live in chunks that never move and are never freed before the process ends, so that a reader without the
/// lock at worst sees values from a moment ago: growing and releasing the table is safe while other threads print.
/// The table itself is constant-initialised and never destroyed: static objects of the host may use it.
///
/// The lock is recursive, and it is held while the host's callbacks run. Keep no Module across such a call: the
/// callback may reset the table. Look it up again.
class ModuleTable
{
public:
    static constexpr int predefinedCount = 27;

    /// The one table of the process. Inline: every message asks.
    static ModuleTable &instance() { return s_instance; }

    ModuleTable(const ModuleTable &) = delete;
    ModuleTable &operator=(const ModuleTable &) = delete;

    platform::RecursiveLock &lock() ZORVAN_RETURN_CAPABILITY(m_lock) { return m_lock; }

    /// Whether there is a table. Without the lock the answer may be old at once.
    [[nodiscard]] bool exists() const { return capacity() > 0; }
    /// Ids below it have a record, ids at or above it are unknown. 0 without a table.
    [[nodiscard]] int capacity() const { return m_capacity.load(std::memory_order_acquire); }
    /// Ids below it were handed out.
    [[nodiscard]] int count() const { return m_count.load(std::memory_order_relaxed); }
    /// Null for an unknown id.
    [[nodiscard]] ModuleSwitches *switches(moduleId id)
    {
        return static_cast<unsigned>(id) < static_cast<unsigned>(capacity()) ? &recordAt(id).switches : nullptr;
    }

    /// Builds the table with its predefined modules; what was there before is reset.
    void build() ZORVAN_REQUIRES(m_lock);
    void release() ZORVAN_REQUIRES(m_lock);
    /// Takes the next id, doubling the capacity when needed; -1 without a table.
    moduleId add() ZORVAN_REQUIRES(m_lock);
    /// Null for an unknown id.
    Module *find(moduleId id) ZORVAN_REQUIRES(m_lock)
    {
        return switches(id) ? &recordAt(id).module : nullptr;
    }
    /// Gives every module in use its prefix, padded to the longest name in use.
    void rebuildPrefixes() ZORVAN_REQUIRES(m_lock);

private:
    static ModuleTable s_instance;

    constexpr ModuleTable() = default;

    struct alignas(64) Record
    {
        ModuleSwitches switches;
        Module module;
    };
    static constexpr unsigned firstChunkBits = 5; // 32 records; each further chunk is twice as large
    static constexpr int chunkCount = 26;         // room for every positive id

    Record &recordAt(moduleId id)
    {
        const unsigned index = static_cast<unsigned>(id) + (1U << firstChunkBits);
        const unsigned highestBit = 31U - static_cast<unsigned>(__builtin_clz(index));
        return m_chunks[highestBit - firstChunkBits].load(std::memory_order_relaxed)[index - (1U << highestBit)];
    }
    void makeRecords(int capacity) ZORVAN_REQUIRES(m_lock);
    void resetRecord(moduleId id) ZORVAN_REQUIRES(m_lock);

    // Read by every isActive(): away from the cache line that a waiting or printing thread keeps changing.
    alignas(64) std::atomic<int> m_capacity{0};
    std::atomic<int> m_count{predefinedCount};
    std::array<std::atomic<Record *>, chunkCount> m_chunks{};
    alignas(64) platform::RecursiveLock m_lock;
};

inline ModuleTable &moduleTable()
{
    return ModuleTable::instance();
}

} // namespace Zorvan
