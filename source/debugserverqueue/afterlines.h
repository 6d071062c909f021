#pragma once

/// What a thread still owes for the lines it handed over, and pays when it has released the module table.
///
/// Lines are appended with the table locked. Waking the GUI thread there would have it compete at once for
/// the locks that the printing thread holds, and sleeping there would stop every other thread.

#include <cstdint>

namespace Zorvan::afterlines {

/// The calling thread has begun a new batch: the GUI thread must be woken for it.
void noteBatch();
/// Notes what the line just appended costs the calling thread. \a waiting: how many lines wait, with this
/// one.
void noteLine(std::int32_t waiting);
/// Whether the calling thread owes anything.
[[nodiscard]] bool isDue();
/// Pays it, unless the calling thread still holds the module table: wakes the GUI thread, then sleeps up to
/// 10 ms for each noted line, for as long as too many lines wait. In client mode the GUI thread handles
/// events instead.
void pay();

/// The thread with the event loop; null: not known, nobody is held back.
void setLoopThread(void *id);

} // namespace Zorvan::afterlines
