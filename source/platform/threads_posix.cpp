#include "platform/lock.h"

#include <pthread.h>

namespace Zorvan::platform {

void *currentThreadId()
{
    return reinterpret_cast<void *>(pthread_self());
}

} // namespace Zorvan::platform
