/// An instrument under fire: counts every line at every sink.
///
///   soak                       some eight seconds of all faults in turn
///   soak --seconds 3600        the long run
///   --scenario NAME            all, or one of: window clients access cycles application daemon
///   --seed N                   other faults together; each run prints its own
///   --patience N               seconds in which every actor has to move (20); then all stacks are printed
///   --disk device              the full disk is /dev/full, as where mounting is not allowed
///   --sabotage HOW             plays one round and spoils what it got, to see that it is noticed: lost,
///                              doubled, torn or reordered (in the file), the same with window- before it,
///                              hang; descriptor and memory leak in each of two rounds
///
/// Exit code 0: every line is where it belongs or accounted for, memory and descriptors are bounded.

#include "instrument.h"
#include "support/programdata.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <malloc.h>
#include <regex>
#include <unistd.h>

namespace {

using namespace Zorvan;
using namespace Zorvan::soak;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Options = std::map<std::string, std::string>;

constexpr const char *scenarios[] = {"window", "clients", "access", "cycles", "application"};
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::uint64_t growthAtOnce = 200 * 1024, mostGrowth = 600 * 1024; // KiB: quarantine, shadow
#else
constexpr std::uint64_t growthAtOnce = 8 * 1024, mostGrowth = 48 * 1024; // KiB
#endif

// KiB, and one for each round: texts come and go, and Qt loses some hundred bytes with each application.
constexpr std::uint64_t mostMoreInUse = 2048;

/// Does not return if one is mistyped: a run of something else would look like success.
Options read(int count, char **arguments)
{
    const Options possible{
        {"--seconds", "[0-9]{1,6}"},
        {"--scenario", "all|window|clients|access|cycles|application|daemon"},
        {"--seed", "[0-9]{1,9}"},
        {"--patience", "[1-9][0-9]{0,5}"},
        {"--disk", "tmpfs|device"},
        {"--sabotage", "none|(window-)?(lost|doubled|torn|reordered)|hang|descriptor|memory"}};
    const auto seed = std::to_string(Clock::now().time_since_epoch().count() % 1'000'000);
    Options options{{"--seconds", "5"},   {"--scenario", "all"}, {"--seed", seed},
                    {"--patience", "20"}, {"--disk", "tmpfs"},   {"--sabotage", "none"}};
    for (int i = 1; i < count; i += 2) {
        const std::string value = i + 1 < count ? arguments[i + 1] : "";
        const auto known = possible.find(arguments[i]);
        if (known == possible.end() || !std::regex_match(value, std::regex(known->second))) {
            for (const auto &[name, values] : possible)
                std::fprintf(stderr, "soak: %s %s\n", name.c_str(), values.c_str());
            std::exit(2);
        }
        options[known->first] = value;
    }
    return options;
}

/// The memory of this process in KiB.
std::uint64_t memory(const std::string &what)
{
    malloc_trim(0);
    const std::string status = test::readFile("/proc/self/status");
    return std::stoull(status.substr(status.find(what) + what.size()));
}

/// What the allocator has given out, in KiB; nothing where a sanitizer brings its own, which reports leaks
/// itself.
std::uint64_t memoryInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return (info.uordblks + info.hblkhd) / 1024;
}

std::uint64_t descriptors()
{
    const std::filesystem::directory_iterator open("/proc/self/fd");
    return static_cast<std::uint64_t>(std::distance(begin(open), end(open)));
}

Faults faultsOf(unsigned round, const std::string &scenario, std::minstd_rand &random)
{
    Faults faults;
    for (unsigned i = 0; i < std::size(scenarios); ++i) {
        if (scenario == scenarios[i] || (scenario == "all" && round % std::size(scenarios) == i))
            faults.gui = static_cast<Faults::Gui>(i);
    }
    faults.disk = static_cast<Faults::Disk>((round / 5 + round % 5) % 4);
    const bool hasRuns = faults.gui == Faults::Gui::Cycles || faults.gui == Faults::Gui::Application;
    if (hasRuns && faults.disk == Faults::Disk::Maximum)
        faults.disk = Faults::Disk::None; // each run has its file, which could begin anew
    faults.clock = random() % 2 == 0;
    faults.filter = random() % 3 == 0;
    faults.receiver = random() % 2 == 0;
    return faults;
}

/// In KiB: what the allocator keeps grows with the rounds, but not for ever.
std::uint64_t mostGrowthIn(unsigned rounds)
{
    return std::min(mostGrowth, growthAtOnce + rounds * mostGrowth / 200);
}

void checkGrowth(unsigned rounds)
{
    count("KiB in use at the end", memoryInUse());
    if (counted("KiB in use at the end") > counted("KiB in use after the warm-up") + mostMoreInUse + rounds)
        count("!memory leaked");
    count("KiB at most", memory("VmHWM:"));
    count("KiB at the end", memory("VmRSS:"));
    count("descriptors at the end", descriptors());
    if (counted("KiB at the end") > counted("KiB after the warm-up") + mostGrowthIn(rounds))
        count("!memory grew too much");
    if (counted("descriptors at the end") > counted("descriptors after the warm-up"))
        count("!descriptors leaked");
}

void playInstrument(Options &options, std::chrono::seconds length)
{
    const auto seed = static_cast<unsigned>(std::stoul(options["--seed"]));
    const std::string sabotage = options["--sabotage"];
    const unsigned warmUp = sabotage == "none" ? 10 : 1; // rounds: each fault twice
    const unsigned least = sabotage == "none" ? 5 : 1; // to compare: each fault once
    const auto end = sabotage == "none" ? Clock::now() + length : Clock::now();
    const auto roundLength =
        std::min<std::chrono::milliseconds>(2s, 1000ms * length.count() / (warmUp + least));
    std::vector<std::string> leaks;
    std::minstd_rand random(seed);
    Instrument instrument(seed, options["--disk"] == "tmpfs");
    unsigned round = 0;
    for (; round < warmUp + least || Clock::now() < end; ++round) {
        if (round == warmUp) {
            instrument.end();
            count("KiB in use after the warm-up", memoryInUse());
            count("KiB after the warm-up", memory("VmRSS:"));
            count("descriptors after the warm-up", descriptors());
        }
        instrument.play(faultsOf(round, options["--scenario"], random), roundLength, sabotage);
        if (sabotage == "memory")
            leaks.emplace_back(1536 * mostGrowthIn(least), 'x');
        if (sabotage == "descriptor" && dup(STDERR_FILENO) < 0)
            return;
    }
    instrument.end();
    checkGrowth(round - warmUp);
}

} // namespace

int main(int argumentCount, char **arguments)
{
    Options options = read(argumentCount, arguments);
    return supervise(arguments, std::chrono::seconds(std::stoi(options["--patience"])), [&] {
        std::fprintf(stderr, "seed %s\n", options["--seed"].c_str());
        const std::chrono::seconds length(std::stoi(options["--seconds"]));
        if (options["--scenario"] == "daemon")
            playDaemons(length);
        else
            playInstrument(options, length);
    });
}
