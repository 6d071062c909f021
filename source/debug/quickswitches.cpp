#include "debug/quickswitches.h"

#include <algorithm>
#include <vector>

namespace Zorvan {

namespace {

/// Arrays that are kept because readers may be in the middle of them, and found again by leak checkers.
std::vector<const void *> &outgrown()
{
    static auto *arrays = new std::vector<const void *>; // never destroyed, like what it holds
    return *arrays;
}

} // namespace

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
    if (present != nullptr)
        outgrown().push_back(present);
    m_switches.store(grown, std::memory_order_release);
    m_room = room;
}

void QuickSwitches::set(moduleId module, int highestLevel, std::uint64_t classes)
{
    Switches &switches = m_switches.load(std::memory_order_relaxed)[module];
    switches.level.store(highestLevel, std::memory_order_relaxed);
    switches.classes.store(classes, std::memory_order_relaxed);
    publish(static_cast<unsigned>(module));
}

void QuickSwitches::answerBelow(int count)
{
    m_answered.store(static_cast<unsigned>(count), std::memory_order_release);
    for (unsigned module = 0; module < std::min(static_cast<unsigned>(m_room), detail::quickLevelCount);
         ++module)
        publish(module);
}

/// What isActive() would answer at once, and nothing else: a change that is under way shows in none of its
/// steps.
void QuickSwitches::publish(unsigned module)
{
    if (m_published == nullptr || module >= detail::quickLevelCount)
        return;
    int level = notAsked;
    if (module < m_answered.load(std::memory_order_relaxed))
        level = m_switches.load(std::memory_order_relaxed)[module].level.load(std::memory_order_relaxed);
    if (level == notAsked)
        level = INT_MAX;
    std::atomic<int> &published = m_published[module].refusedAbove;
    if (published.load(std::memory_order_relaxed) != level) // readers keep their cache line
        published.store(level, std::memory_order_relaxed);
}

} // namespace Zorvan
