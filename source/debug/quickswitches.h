#pragma once

#include <zorvan/debug.h>

#include <atomic>
#include <climits>
#include <cstdint>

namespace Zorvan {

/// The switches of all modules as isActive() reads them: from any thread, without a lock, in one dense array.
///
/// The levels of the first modules are also published, for callers that ask without a call: messages above
/// them are refused, all others have to be asked about here.
///
/// A reader may see values from a moment ago. Arrays that were outgrown are therefore never freed; all of
/// them together take as much as the present one.
class QuickSwitches
{
public:
    /// \a published: detail::quickLevelCount levels; null: nothing is published.
    constexpr explicit QuickSwitches(detail::QuickLevel *published = nullptr)
        : m_published(published)
    {}
    QuickSwitches(const QuickSwitches &) = delete;
    QuickSwitches &operator=(const QuickSwitches &) = delete;

    /// Level of a module that nobody has asked about: the answer is for \a atLength.
    static constexpr int notAsked = INT_MIN;

    /// Whether a message passes; \a atLength answers what the switches alone cannot.
    template <typename AtLength>
    [[nodiscard]] bool isActive(moduleId module, int level, int cls, AtLength atLength) const
    {
        if (static_cast<unsigned>(module) >= m_answered.load(std::memory_order_acquire))
            return atLength();
        const Switches &switches = m_switches.load(std::memory_order_acquire)[module];
        const int highest = switches.level.load(std::memory_order_relaxed);
        if (__builtin_expect(level > highest, 1)) // the answer that has to be the cheapest
            return highest == notAsked ? atLength() : false;
        if (level == 0)
            return true;
        if (static_cast<unsigned>(cls) >= 64U)
            return atLength();
        return (switches.classes.load(std::memory_order_relaxed) >> cls & 1U) != 0;
    }

    /// \name For the writer, one thread at a time
    /// @{
    /// Makes room for ids below \a count; switches that are there already stay.
    void makeRoom(int count);
    /// \a classes: bit n is set if class n is enabled.
    void set(moduleId module, int highestLevel, std::uint64_t classes);
    /// Ids at or above \a count are answered at length; 0 for all.
    void answerBelow(int count);
    /// @}

private:
    struct Switches
    {
        std::atomic<int> level{notAsked};
        std::atomic<std::uint64_t> classes{0};
    };

    void publish(unsigned module);

    // On a cache line that printing threads leave alone.
    alignas(64) std::atomic<unsigned> m_answered{0};
    std::atomic<Switches *> m_switches{nullptr};
    int m_room = 0;
    detail::QuickLevel *const m_published;
};

} // namespace Zorvan
