#pragma once

#include "database.h"
#include "errorqueue.h"
#include "hardware.h"
#include "kernel.h"
#include "scpiparser.h"
#include "sequencer.h"
#include "storage.h"

#include <string>
#include <string_view>

namespace SignalGenerator {

/// What a front panel shows.
struct Status
{
    Settings settings; ///< frequency and level include their offsets, as in commands
    HardwareState hardware;
    std::size_t errors = 0; ///< entries of the error queue
};

/// The signal generator behind its remote control. A front end makes one and feeds it lines from one thread.
///
/// A command stores its setting in the database; the kernel thread turns changes into settings of the boards;
/// the hardware thread applies them; the sweep thread steps through lists and sweeps. The destructor ends
/// them all.
class Instrument
{
public:
    Instrument();
    ~Instrument();
    Instrument(const Instrument &) = delete;
    Instrument &operator=(const Instrument &) = delete;

    /// Carries out one line of commands and returns the reply, empty if there is none.
    [[nodiscard]] std::string execute(std::string_view line);
    /// Any thread, at any time: it waits for nothing but another thread's copy of a few values.
    [[nodiscard]] Status status() const;
    /// Ends a running list or sweep, and with it a command that waits for one. Any thread; returns at once.
    void abort();
    /// The same, and from now on each list or sweep ends at its first point.
    void close();

private:
    // Each needs those before it, so that the threads end from the last to the first.
    ErrorQueue m_errors;
    Database m_database;
    Storage m_storage;
    Hardware m_hardware;
    Kernel m_kernel;
    Sequencer m_sequencer;
    ScpiParser m_parser;
};

} // namespace SignalGenerator
