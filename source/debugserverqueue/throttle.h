#pragma once

/// Holds back threads that print faster than the GUI thread can follow.
///
/// A line is appended with the module table locked; sleeping there would stop every other thread. So the
/// delay is only noted with the line, and paid by the thread once it has released the table.

#include <cstdint>

namespace Zorvan::throttle {

/// Notes what the line just appended costs the calling thread. \a waiting: how many lines wait, with this
/// one.
void noteLine(std::int32_t waiting);
/// Whether the calling thread has something to pay.
[[nodiscard]] bool isDue();
/// Pays it, unless the calling thread still holds the module table: up to 10 ms for each noted line, for as
/// long as too many lines wait. In client mode the GUI thread handles events instead.
void pay();

/// The thread with the event loop; null: not known, nobody is held back.
void setLoopThread(void *id);

} // namespace Zorvan::throttle
