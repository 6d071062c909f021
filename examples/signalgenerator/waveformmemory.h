#pragma once

#include <atomic>
#include <string>

namespace SignalGenerator {

/// The memory of the baseband board, which holds the samples that it plays. Used by the hardware thread.
class WaveformMemory
{
public:
    WaveformMemory() = default;
    ~WaveformMemory();
    WaveformMemory(const WaveformMemory &) = delete;
    WaveformMemory &operator=(const WaveformMemory &) = delete;

    /// Replaces what is loaded.
    void load(const std::string &samples);
    /// A fault on purpose, for something to be found in the leak report: what is replaced is not given back.
    /// Any thread.
    void setLeaking(bool leaking) { m_leaking = leaking; }

private:
    void unload();

    void *m_samples = nullptr;
    std::atomic<bool> m_leaking{false};
};

} // namespace SignalGenerator
