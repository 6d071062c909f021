#pragma once

namespace Zorvan::analysis {

/// Finds out what measuring costs on this machine and tells the output handler. Times are to be tracked
/// meanwhile. Leaves measurements behind that are to be cleared.
void calibrate();

} // namespace Zorvan::analysis
