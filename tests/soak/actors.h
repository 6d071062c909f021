#pragma once

#include "ledger.h"
#include "supervisor.h"

#include <zorvan/debug.h>

#include <chrono>
#include <functional>
#include <string>

namespace Zorvan::soak {

constexpr std::size_t producers = 8;
constexpr std::size_t stayingClient = producers; // further clients come and go

/// What the actors of a round and the thread of the instrument's GUI know of each other.
struct Round
{
    Ledger ledger{producers};
    Circumstance file;
    Circumstance library;
    Circumstance loop; ///< of events
    std::mutex filePlace{}; ///< held while the file is not at its place
    std::atomic<bool> stop{false};
    std::atomic<int> running{0}; ///< actors that have not ended
    std::atomic<int> connected{0}; ///< those of them that are clients with a connection
    std::atomic<int> port{0}; ///< 0: nobody listens
    std::atomic<std::int64_t> fence{-1}; ///< order of a line behind which all clients leave
    std::atomic<bool> fenceSeen{false};
    std::atomic<std::uint64_t> stalls{0}; ///< how often the GUI thread was away too long
    std::atomic<std::uint64_t> turns{0}; ///< of its loop
    std::mutex connectionsLock{};
    std::vector<Connection> connections{}; ///< guarded by it
};

/// What an actor does again and again; returns how long it pauses.
using Step = std::function<std::chrono::milliseconds()>;

/// Prints messages of one to three lines, some of them above the level, some for the filter.
[[nodiscard]] Step producer(Round &round, std::size_t thread, unsigned seed);
/// Prints one line that is kept; returns its place among the lines of the tap.
std::int64_t printFence(Round &round);

/// Installs, activates and removes hooks of all kinds.
[[nodiscard]] Step hookActor(Round &round);
/// Installs the hook "soak_remote", which remote clients trigger.
void installRemoteHook();
/// Compares calls with activations, when the library has ended and with it all threads of hooks.
void checkHooks();

/// A remote client: connects whenever it can and takes lines; those that do not stay leave by closing their
/// sending side or by breaking off, and trigger the hook.
[[nodiscard]] Step clientActor(Round &round, std::size_t number, unsigned seed);

/// Asks boxes that the robot answers, as their captions say.
[[nodiscard]] Step boxActor(Round &round);
/// The robot, in the GUI thread.
void answerBoxes();

/// A name behind which older ones of its kind sort.
[[nodiscard]] std::string nextName(const std::string &stem);
/// Takes the output file's folder away and brings it back, as a new one or the old one.
[[nodiscard]] Step folderActor(Round &round, const std::string &folder);
/// Fills the disk of the output file and makes room again.
[[nodiscard]] Step diskActor(Round &round, const std::string &file);
/// Leads the output file to a device that is always full.
[[nodiscard]] Step deviceActor(Round &round, const std::string &file);

/// Sets the clock back and forth.
[[nodiscard]] Step clockActor();
/// Sets the wall clock of this process, and of no other, so many seconds forth or back from the right time.
void shiftClock(long seconds);

} // namespace Zorvan::soak
