#include "debug/quickswitches.h"

#include <algorithm>

namespace Zorvan {

void QuickSwitches::makeRoom(int count)
{
    if (count <= m_room)
        return;
    const int room = std::max(count, 2 * m_room);
    auto *const grown = new Switches[static_cast<std::size_t>(room)];
    const Switches *const present = m_switches.load(std::memory_order_relaxed);
    for (int i = 0; i < m_room; ++i) {
        grown[i].level.store(present[i].level.load(std::memory_order_relaxed), std::memory_order_relaxed);
        grown[i].classes.store(present[i].classes.load(std::memory_order_relaxed), std::memory_order_relaxed);
    }
    // The outgrown array stays: readers may be in the middle of it.
    m_switches.store(grown, std::memory_order_release);
    m_room = room;
}

void QuickSwitches::set(moduleId module, int highestLevel, std::uint64_t classes)
{
    Switches &switches = m_switches.load(std::memory_order_relaxed)[module];
    switches.level.store(highestLevel, std::memory_order_relaxed);
    switches.classes.store(classes, std::memory_order_relaxed);
}

} // namespace Zorvan
