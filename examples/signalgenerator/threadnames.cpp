#include "threadnames.h"

namespace SignalGenerator {

namespace {

thread_local const char *s_threadName = "unnamed";

} // namespace

void setThreadName(const char *name)
{
    s_threadName = name;
}

const char *ThreadNames::threadName()
{
    return s_threadName;
}

} // namespace SignalGenerator
