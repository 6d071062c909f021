#pragma once

#include <string>

namespace SignalGenerator {

class RemoteControl;

struct SelfTestResult
{
    bool passed = true;
    std::string report; ///< one line per frequency
};

/// Tunes the instrument over its range with the output switched off and leaves it as it was. Waits for the
/// instrument, so it needs a thread of its own.
[[nodiscard]] SelfTestResult runSelfTest(RemoteControl &remote);

} // namespace SignalGenerator
