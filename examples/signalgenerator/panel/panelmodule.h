#pragma once

#include <zorvan/debug.h>

namespace SignalGenerator {

/// The panel's module "SG4000-Panel", with levels of its own.
namespace PanelLevel {
constexpr int Report = 0; ///< somebody asked for it: level 0 is printed whatever the settings
constexpr int Warning = 1;
constexpr int Info = 2;
} // namespace PanelLevel

/// After Debug::initDebug().
[[nodiscard]] Zorvan::moduleId createPanelModule();

} // namespace SignalGenerator
