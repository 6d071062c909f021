#pragma once

class QMenu;

namespace Zorvan {

/// What the menu of the analysis tools can do. The numbers are the data of its entries.
enum class AnalyzerCommand : int {
    TrackLeaks = 4096,
    TrackMethods = 4097,
    DumpResults = 4098,
    EnableTools = 4099,
    AnalyzeStartup = 4100,
    ClearResults = 4101,
    SelectSources = 4102,
};

struct AnalyzerState
{
    bool toolsEnabled = false; ///< as stored: a change takes effect when the host starts next
    bool startupAnalyzed = false;
    bool leaksTracked = false;
    bool methodsTracked = false;
};

/// The state of the tools at the moment.
[[nodiscard]] AnalyzerState analyzerState();

void fillAnalyzerMenu(QMenu &menu, const AnalyzerState &state);

} // namespace Zorvan
