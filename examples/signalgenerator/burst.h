#pragma once

namespace SignalGenerator {

/// Prints numbered lines from four threads at once, on four modules and three levels, and returns when all
/// are printed. They appear as far as these modules' levels let them.
///
/// \param linesPerSecond of all threads together; 0: as fast as they can
void printBurst(int lines, int linesPerSecond);

} // namespace SignalGenerator
