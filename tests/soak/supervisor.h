#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace Zorvan::soak {

/// Runs \a play in a child process, with a program-data folder of its own and its standard output in the file
/// "stdout" there, and prints what was counted. When an actor stands still for \a patience, the stacks of all
/// threads are printed and the child is killed. Returns 0 if the child ended well and counted no faults.
int supervise(char **arguments, std::chrono::seconds patience, const std::function<void()> &play);
/// The folder of the child.
[[nodiscard]] std::string ownFolder();

constexpr std::size_t mostActors = 16;
/// An actor has got on. From its first beat on it has to, until it rests.
void beat(std::size_t actor);
void rest(std::size_t actor);

/// Adds to a line of the report; a name that begins with '!' is a fault. Any thread.
void count(const std::string &name, std::uint64_t times = 1);
[[nodiscard]] std::uint64_t counted(const std::string &name);
[[nodiscard]] std::uint64_t faults();

} // namespace Zorvan::soak
