#pragma once

namespace SignalGenerator {

struct Options;

/// Whether the environment names something that windows can be shown on.
[[nodiscard]] bool displayIsThere();

/// Runs the instrument with its front panel until the panel is closed; returns the exit code.
int runPanelSession(const Options &options);

} // namespace SignalGenerator
