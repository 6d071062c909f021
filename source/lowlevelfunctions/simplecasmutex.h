#pragma once

#include "platform/lock.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace Zorvan {

/// Spin lock of the process-level services: usable before and after everything else, even while static
/// objects are built or destroyed. Not recursive, no owner, no time-out.
///
/// The lock word lies apart on the heap: 0 free, 1 held. A failed attempt tries again for some
/// microseconds before it sleeps 1 ms. Never call host code or Qt with one of these held: whatever they log
/// would deadlock.
class ZORVAN_CAPABILITY("mutex") simpleCASMutex
{
public:
    simpleCASMutex();
    virtual ~simpleCASMutex();
    simpleCASMutex(const simpleCASMutex &) = delete;
    simpleCASMutex &operator=(const simpleCASMutex &) = delete;

    void lock() ZORVAN_ACQUIRE();
    /// One attempt. False: somebody holds the lock.
    bool tryLock() ZORVAN_TRY_ACQUIRE(true);
    /// Only for the holder: releasing a free lock waits until somebody takes it.
    void unlock() ZORVAN_RELEASE();

private:
    bool exchange(std::uint32_t from, std::uint32_t to, std::memory_order order);

    std::unique_ptr<std::atomic<std::uint32_t>> m_word;
};

} // namespace Zorvan
