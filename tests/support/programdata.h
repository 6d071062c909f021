#pragma once

#include <string>
#include <vector>

namespace Zorvan::test {

/// Replaces this process by itself with ZORVAN_PROGRAMDATA set to a fresh temporary folder; returns when it
/// is set.
void restartWithOwnProgramData(char **argv);
void removeOwnProgramData();

/// The library's folder in the program-data folder: <ZORVAN_PROGRAMDATA>/Velmora.
[[nodiscard]] std::string libraryFolder();
/// Path of a file in it.
[[nodiscard]] std::string libraryFile(const std::string &name);

/// Whole content; empty if the file does not exist.
[[nodiscard]] std::string readFile(const std::string &path);
void writeFile(const std::string &path, const std::string &content);
/// The lines of a text without their ends (LF or CR LF); text behind the last line end counts as a line.
[[nodiscard]] std::vector<std::string> linesOf(const std::string &text);

} // namespace Zorvan::test
