#pragma once

#include <zorvan/debug.h>

/// What the members of the facade and the plain functions of the same names share.
namespace Zorvan::measurements {

/// Starts a stopwatch and returns the counter; 0 for null.
quint64 start(ressourceInfo *info);
/// Stops it and returns the ticks since its start; 0 for null.
qint64 stop(ressourceInfo *info);

} // namespace Zorvan::measurements
