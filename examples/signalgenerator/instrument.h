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
