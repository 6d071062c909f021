#pragma once

#include "debug/descriptions.h"
#include "debug/quickswitches.h"
#include "debugserverqueue/afterlines.h"
#include "host/tablestate.h"

#include <zorvan/debug.h>

#include <atomic>
#include <deque>
#include <map>
#include <string>

namespace Zorvan {

/// State of one message class of a module. Entries come with the first enable or disable and stay.
struct DebugClass
{
    bool enabled = true;
};

/// One module. All of it is guarded by the table's lock.
struct Module
{
    bool inUse = false; ///< somebody asked about the module: it has a prefix
    int clippingLevel = 0; ///< highest level let through
    std::string name = "Please call setModuleDescription()";
    std::string prefix; ///< "<", padding, name, "> "; empty until the module is in use
    std::string description = "unnamedModule";
    const Descriptions *levels = Descriptions::none();
    const Descriptions *classes = Descriptions::none();
    std::map<int, DebugClass> classStates; ///< by class; -1 and -2 can occur and are no classes
    OutputReceiver receiver = nullptr;

    [[nodiscard]] bool hasEnabledClass() const;
    [[nodiscard]] bool isClassEnabled(int cls) const;
};

/// All modules by their ids, and what isActive() may read of them without the lock.
///
/// The lock is recursive, and it is held while the host's callbacks run. Keep no Module across such a call:
/// the callback may reset the table. Look it up again.
class ModuleTable
{
public:
    static constexpr int predefinedCount = 27;

    /// What isActive() asks first. Inline and constant-initialised: every message asks.
    static QuickSwitches &quickSwitches() { return s_quickSwitches; }

    platform::RecursiveLock &lock() ZORVAN_RETURN_CAPABILITY(m_lock) { return m_lock; }

    /// Whether there is a table. Without the lock the answer may be old at once.
    [[nodiscard]] static bool exists() { return TableState::exists(); }
    /// Ids below it have a record, ids at or above it are unknown. 0 without a table.
    [[nodiscard]] int capacity() const ZORVAN_REQUIRES(m_lock) { return static_cast<int>(m_modules.size()); }
    /// Ids below it were handed out.
    [[nodiscard]] int count() const ZORVAN_REQUIRES(m_lock) { return m_count; }
    /// Null for an unknown id.
    [[nodiscard]] Module *find(moduleId id) ZORVAN_REQUIRES(m_lock)
    {
        const auto index = static_cast<unsigned>(id);
        return index < m_modules.size() ? &m_modules[index] : nullptr;
    }

    /// Builds the table with its predefined modules; what was there before is reset.
    void build() ZORVAN_REQUIRES(m_lock);
    void release() ZORVAN_REQUIRES(m_lock); ///< the end of the library
    /// Takes the next id, doubling the capacity when needed; -1 without a table.
    moduleId add() ZORVAN_REQUIRES(m_lock);

    /// Gives the module a prefix; all prefixes are padded to the longest name in use.
    void takeIntoUse(moduleId id) ZORVAN_REQUIRES(m_lock);
    void rename(moduleId id, const char *name) ZORVAN_REQUIRES(m_lock);
    /// Call after a change of a module's clippingLevel or classStates.
    void switchesChanged(moduleId id) ZORVAN_REQUIRES(m_lock);
    /// Whether isActive() may be answered from the switches of the modules alone.
    void answerQuickly(bool quickly) ZORVAN_REQUIRES(m_lock);

private:
    static QuickSwitches s_quickSwitches;

    void clear() ZORVAN_REQUIRES(m_lock);
    void grow(int capacity) ZORVAN_REQUIRES(m_lock);
    [[nodiscard]] std::size_t widestNameInUse() const ZORVAN_REQUIRES(m_lock);
    void refreshPrefix(Module &module, std::size_t width) ZORVAN_REQUIRES(m_lock);
    void publishQuickCount() ZORVAN_REQUIRES(m_lock);

    platform::RecursiveLock &m_lock = TableState::lock();
    std::deque<Module> m_modules ZORVAN_GUARDED_BY(m_lock); // its size is the capacity
    int m_count ZORVAN_GUARDED_BY(m_lock) = predefinedCount;
    std::size_t m_prefixWidth ZORVAN_GUARDED_BY(m_lock) = 0;
    bool m_answersQuickly ZORVAN_GUARDED_BY(m_lock) = false;
};

/// The one table of the process, never destroyed: static objects of the host may print.
ModuleTable &moduleTable();

/// Call whenever the table's lock was released: if it was the outermost time, a thread that printed pays for
/// its lines.
inline void payAfterLines()
{
    if (afterlines::isDue())
        afterlines::pay();
}

/// Locks the one table for a scope. At the end of its outermost scope a thread that printed wakes the GUI
/// thread, and is held back if the GUI thread cannot follow.
class ZORVAN_SCOPED_CAPABILITY TableLock
{
public:
    TableLock() ZORVAN_ACQUIRE(moduleTable().lock()) { moduleTable().lock().lock(); }
    ~TableLock() ZORVAN_RELEASE()
    {
        moduleTable().lock().unlock();
        payAfterLines();
    }
    TableLock(const TableLock &) = delete;
    TableLock &operator=(const TableLock &) = delete;
};

/// Builds the table anew with its predefined modules; they have no classes and levels yet.
void checkConfig();

} // namespace Zorvan
