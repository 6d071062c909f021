#pragma once

/// Calls that wait for other threads to answer.

#include "measure.h"

namespace bench {

/// \a once begins when settle() has returned, and returns with the answer.
struct Wait
{
    std::string name;
    std::function<void()> once;
    std::function<void()> settle;
};

struct WaitTimes
{
    std::string name;
    std::vector<double> times; ///< of each call, in nanoseconds, in no order
};

/// Calls all in turn, in the calling thread. No call is left out: what another process does to it is in the
/// percentiles.
std::vector<WaitTimes> timeWaits(int rounds, const std::vector<Wait> &waits);

/// Calls all in turn, in the calling thread. The figure is the median of the processor time of that thread.
std::vector<Result> measureProcessorTime(int rounds, const std::vector<Subject> &subjects);

/// The value that \a share of the times do not exceed, for a row of a table.
Result resultAt(const WaitTimes &times, double share, const std::string &nameSuffix = {});

} // namespace bench
