#include "lowlevelfunctions/simplecasmutex.h"

#include "platform/clock.h"
#include "platform/processor.h"

namespace Zorvan {

namespace {

// Some times as long as one log line takes to write: a second writer then gets the lock without sleeping.
constexpr int triesBeforeSleep = 2000;

} // namespace

simpleCASMutex::simpleCASMutex()
    : m_word(std::make_unique<std::atomic<std::uint32_t>>(0))
{}

simpleCASMutex::~simpleCASMutex() = default;

bool simpleCASMutex::exchange(std::uint32_t from, std::uint32_t to, std::memory_order order)
{
    // Looked at first: a waiter that writes would slow down the holder.
    return m_word->load(std::memory_order_relaxed) == from
        && m_word->compare_exchange_strong(from, to, order, std::memory_order_relaxed);
}

void simpleCASMutex::lock()
{
    for (int attempt = 0; !tryLock(); ++attempt) {
        if (attempt < triesBeforeSleep)
            platform::spinPause();
        else
            platform::sleepFor(std::chrono::milliseconds(1));
    }
}

bool simpleCASMutex::tryLock() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    return exchange(0, 1, std::memory_order_acquire);
}

void simpleCASMutex::unlock()
{
    while (!exchange(1, 0, std::memory_order_release))
        platform::sleepFor(std::chrono::milliseconds(1));
}

} // namespace Zorvan
