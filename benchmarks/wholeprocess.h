#pragma once

/// Whole processes that allocate, from start to end, which is all that can be said about a tool that runs the
/// whole program. \a self is the program; "plain" and "pairs" make it allocate without and with tracking. The
/// functions return false if a process fails.

#include <string>

namespace bench {

constexpr int wholeProcessPairs = 5'000'000;

/// A table of the times.
bool compareProcesses(const std::string &self);

/// Rows of the comparison, of the median of three runs.
bool compareWithHeaptrack(const std::string &self);

} // namespace bench
