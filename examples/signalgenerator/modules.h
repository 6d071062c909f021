#pragma once

/// \file
/// The modules, classes and levels that the instrument prints on. The library knows the modules from the
/// start and gives each of them these two classes and five levels.

#include <zorvan/debug.h>

namespace SignalGenerator {

namespace Module {
constexpr Zorvan::moduleId Startup = 1;
constexpr Zorvan::moduleId Kernel = 2;
constexpr Zorvan::moduleId Database = 4;
constexpr Zorvan::moduleId OrgLayer = 5; ///< level calculation
constexpr Zorvan::moduleId Scpi = 13;
constexpr Zorvan::moduleId ListAdmin = 14; ///< lists and waveforms
constexpr Zorvan::moduleId Sweep = 15;
constexpr Zorvan::moduleId BasebandInput = 16;
constexpr Zorvan::moduleId BaseBoard = 22; ///< synthesizer
constexpr Zorvan::moduleId AnalogBoard = 23; ///< attenuator, level control, modulators
constexpr Zorvan::moduleId Wavemill = 24; ///< baseband generator
} // namespace Module

namespace MessageClass {
constexpr int Debug = 0;
constexpr int TimeMeasurement = 1;
} // namespace MessageClass

namespace Level {
constexpr int Critical = 0;
constexpr int Error = 1;
constexpr int Warning = 2;
constexpr int Info = 3;
constexpr int TimeMeasurement = 4;
} // namespace Level

} // namespace SignalGenerator
