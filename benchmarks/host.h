#pragma once

/// The host that the programs play, and the files they write.

#include <zorvan/debug.h>

#include <cstdio>
#include <string>

namespace bench {

// Numbers within a module's descriptions.
constexpr int infoLevel = 3;
constexpr int enabledClass = 0;
constexpr int disabledClass = 1;

/// Starts the library for the rest of the process, with a counter of nanoseconds and thread names.
///
/// Ends the program if ZORVAN_PROGRAMDATA is not set: the figures must not grow the log of the machine.
void startLibrary();

/// Gives a module four levels, all let through, and two classes, one of them disabled.
void describeModule(Zorvan::moduleId module);

/// A new module, described.
Zorvan::moduleId makeModule(const char *name);

/// Makes modules behind \a last until there are so many, and asks each for the first time. Nanoseconds.
double makeModules(Zorvan::moduleId last, int count);

/// Takes lines and drops them.
void ignoreLine(Zorvan::hookData *data);

/// Drops inside the process what it gets.
FILE *droppingStream();

/// Puts the flags to exactly the words given, see Debug::enableSettings().
void setFlags(const char *words);

/// A file in the library's folder for program data, where its system log is.
std::string dataFile(const std::string &name);

/// Opens the file for append, writes, closes: the least that a line costs which is safe in a file at once.
void writeRaw(const std::string &path, const std::string &bytes);

/// The last line of a file, with its line end.
std::string lastLine(const std::string &path);

} // namespace bench
