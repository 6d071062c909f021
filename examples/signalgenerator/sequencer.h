#pragma once

#include "database.h"
#include "kernel.h"
#include "storage.h"
#include "workerthread.h"

#include <zorvan/debug.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <vector>

namespace SignalGenerator {

struct Sequence
{
    Zorvan::moduleId module; ///< prints the progress
    std::vector<Point> points;
    std::chrono::duration<double> dwell; ///< how long each point stays after it has settled
};

/// The points of the sweep that the settings describe; logarithmic ones have a constant ratio.
[[nodiscard]] std::vector<Point> sweepPoints(const Settings &settings);

/// Runs lists and sweeps, one at a time, in the sweep thread. The database's frequency and level return at
/// the end.
class Sequencer
{
public:
    explicit Sequencer(Kernel &kernel);
    /// Aborts what runs.
    ~Sequencer();
    Sequencer(const Sequencer &) = delete;
    Sequencer &operator=(const Sequencer &) = delete;

    /// Aborts what runs, then starts; returns at once.
    void start(Sequence sequence);
    /// Returns when nothing runs any more.
    void abort();
    /// The same without waiting for it; any thread.
    void requestAbort();
    /// Aborts what runs and what is started from now on, without waiting for it; any thread.
    void close();
    void waitUntilDone();

private:
    void run(const Sequence &sequence);
    /// False if the sequence was aborted meanwhile.
    [[nodiscard]] bool dwell(std::chrono::duration<double> time);

    Kernel &m_kernel;
    std::mutex m_mutex; // guards m_aborted and m_closed
    std::condition_variable m_abort;
    bool m_aborted = false;
    bool m_closed = false;
    WorkerThread m_thread{"sweep"}; // last, so that it ends first
};

} // namespace SignalGenerator
