#pragma once

#include "lowlevelfunctions/simplecasmutex.h"

#include <atomic>

/// The leak and method analyzer. It runs if the low-level property "analyzingToolsEnabled" was 1 when the
/// library was loaded; otherwise every call into it ends after one load and one branch.
namespace Zorvan::analysis {

namespace detail {
extern std::atomic<bool> s_isRunning;
} // namespace detail

/// Whether the analyzer was started.
[[nodiscard]] inline bool isRunning()
{
    return detail::s_isRunning.load(std::memory_order_acquire);
}

/// Guards the tables that all threads share. Neither host code nor output is called under it. A thread that
/// holds the lock of its own measurements may take it, never the other way round.
[[nodiscard]] simpleCASMutex &analyzerLock();

/// Makes the analyzer survive fork(). Called once, when the library is loaded, and before any other handlers
/// of that kind are registered: its locks are then the last to be held and the first to be released, and the
/// others may allocate, also in a host whose operator new comes here.
void registerForkHandlers();

/// Starts the analyzer if the properties say so. Called once, when the library is loaded.
void start();

/// Stores a state of 0 or more as the property "analyzingToolsEnabled" and returns it; it takes effect when
/// the library is loaded next. A negative one asks for the present value.
int toolsEnabled(int state);
/// The same for "analyzingOnStartup": whether tracking begins with the start of the analyzer.
int startupAnalysis(int state);

} // namespace Zorvan::analysis
