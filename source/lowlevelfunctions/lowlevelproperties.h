#pragma once

namespace Zorvan {

/// Ids of the low-level properties: places in their file.
enum class LowlevelProperty {
    analyzingToolsEnabled,
    analyzingOnStartup,
    releaseAssertEnabled,
    hasGraphicalGui,
    memTrackingEnabled,
    timeTrackingEnabled,
    gyxLogMessageCount,
    gyxLogMessageClear,
    gyxLogMessageFileOutput,
    gyxLogMessageConsoleOutput,
};

/// The same as getLowlevelIntegerProperty(), by name.
[[nodiscard]] int lowlevelProperty(LowlevelProperty property, int defaultValue);

/// Reads the file now instead of at the first question; writes it with its initial values if it is missing.
void loadLowlevelProperties();

/// For fork(): keeps the table still in the forking thread until the counterpart.
void holdLowlevelProperties();
void releaseLowlevelProperties();

} // namespace Zorvan
