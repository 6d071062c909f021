#include "host/tablestate.h"

namespace Zorvan {

std::atomic<bool> TableState::s_exists{false};
std::atomic<unsigned> TableState::s_ends{0};
std::atomic<bool> TableState::s_globalReceiver{false};

platform::RecursiveLock &TableState::lock()
{
    static auto *lock = new platform::RecursiveLock;
    return *lock;
}

} // namespace Zorvan
