#pragma once

/// What the rooms below the module table must know of it: they cannot include it.

#include "platform/lock.h"

#include <zorvan/debug.h>

#include <atomic>

namespace Zorvan {

constexpr moduleId libraryModule = 0; ///< prints the library's own notices

/// The state that the message core shares with the road into the GUI thread. Any thread.
class TableState
{
public:
    /// The lock of the module table. Never destroyed: static objects of the host may print.
    ///
    /// It is recursive and held while host callbacks run. A thread that holds it must not wait for the GUI
    /// thread, which may be waiting for it.
    static platform::RecursiveLock &lock();

    /// Whether there is a table. Without the lock the answer may be old at once.
    [[nodiscard]] static bool exists() { return s_exists.load(std::memory_order_acquire); }
    static void setExists(bool exists) { s_exists.store(exists, std::memory_order_release); }

    /// How often the library has ended so far: who calls the host finds out by it whether that was the end of
    /// what it is at.
    [[nodiscard]] static unsigned ends() { return s_ends.load(std::memory_order_acquire); }
    static void countEnd() { s_ends.fetch_add(1, std::memory_order_release); }

    /// Whether a receiver for all modules is installed: the library then keeps its notices to itself, shows
    /// nothing and stays up.
    [[nodiscard]] static bool hasGlobalReceiver() { return s_globalReceiver.load(std::memory_order_relaxed); }
    static void setGlobalReceiver(bool installed)
    {
        s_globalReceiver.store(installed, std::memory_order_relaxed);
    }

private:
    static std::atomic<bool> s_exists;
    static std::atomic<unsigned> s_ends;
    static std::atomic<bool> s_globalReceiver;
};

} // namespace Zorvan
