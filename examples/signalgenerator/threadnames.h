#pragma once

#include <zorvan/debug.h>

namespace SignalGenerator {

/// Names the calling thread in the line header; \a name is kept as a pointer: pass a literal.
void setThreadName(const char *name);

/// Tells the library the names given with setThreadName().
class ThreadNames : public Zorvan::IThraedInterface
{
public:
    const char *threadName() override;
};

} // namespace SignalGenerator
