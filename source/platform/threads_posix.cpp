#include "platform/lock.h"
#include "platform/threadlocal.h"

#include <pthread.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

ZORVAN_THREAD_WORD std::uint64_t s_kernelThreadId = 0; // 0: not asked yet

/// The child of a fork() has one thread, with a number of its own.
const int s_forgottenInChild = pthread_atfork(nullptr, nullptr, [] { s_kernelThreadId = 0; });

} // namespace

void *currentThreadId()
{
    return reinterpret_cast<void *>(pthread_self());
}

std::uint64_t kernelThreadId()
{
    if (s_kernelThreadId == 0)
        s_kernelThreadId = static_cast<std::uint64_t>(gettid());
    return s_kernelThreadId;
}

} // namespace Zorvan::platform
