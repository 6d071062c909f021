#pragma once

#include "database.h"
#include "errorqueue.h"
#include "hardware.h"
#include "kernel.h"
#include "scpiparser.h"
#include "sequencer.h"
#include "storage.h"

#include <string>

namespace SignalGenerator {

constexpr ScpiParser::ParameterCount noParameters{0, 0};
constexpr ScpiParser::ParameterCount oneParameter{1, 1};
constexpr ScpiParser::ParameterCount twoParameters{2, 2};

/// What the commands work on.
struct Parts
{
    ErrorQueue &errors;
    Database &database;
    Storage &storage;
    Hardware &hardware;
    Kernel &kernel;
    Sequencer &sequencer;
};

/// Fills \a parser with the commands of the instrument; the parts must outlive it.
void addCommands(ScpiParser &parser, const Parts &parts);

/// The groups of it, one file each.
void addParameterCommands(ScpiParser &parser, const Parts &parts);
void addSequenceCommands(ScpiParser &parser, const Parts &parts);
void addDiagnosticCommands(ScpiParser &parser, const Parts &parts);

/// A number for a reply: up to twelve digits and a decimal point, whatever the locale.
[[nodiscard]] std::string formatted(double number);
/// The content of a string parameter; throws a ScpiError for other kinds.
[[nodiscard]] const std::string &textOf(const Parameter &parameter);
/// A whole number from \a minimum to \a maximum; throws a ScpiError for anything else.
[[nodiscard]] int integerOf(const Parameter &parameter, int minimum, int maximum);
/// ON, OFF, 1 or 0; throws a ScpiError for anything else.
[[nodiscard]] bool switchOf(const Parameter &parameter);

} // namespace SignalGenerator
