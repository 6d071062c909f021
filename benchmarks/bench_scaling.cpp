// How costs grow with the number of modules and with the number of threads that print.

#include "host.h"
#include "table.h"

#include <benchmark/benchmark.h>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int fewModules = 27; // present from the start
constexpr int manyModules = 10'000;
constexpr int cycles = 3;

QString text()
{
    return QStringLiteral("frequency set to 1000000000 Hz, level -10.50 dBm");
}

/// The questions and lines of one module, and questions about all of them by turns.
std::vector<Subject> subjects(int modules, moduleId module)
{
    const std::string suffix = ", " + std::to_string(modules) + " modules";
    return {
        {"isActive()" + suffix,
         repeated([module] { benchmark::DoNotOptimize(Debug::isActive(module, infoLevel, enabledClass)); })},
        {"println() to a receiver" + suffix,
         repeated([module, line = text()] { Debug::println(module, enabledClass, line, infoLevel); })},
        {"isActive() of each in turn" + suffix, repeated([modules, asked = 0]() mutable {
             asked = asked + 1 < modules ? asked + 1 : 0;
             benchmark::DoNotOptimize(Debug::isActive(asked, infoLevel, enabledClass));
         })},
    };
}

/// Adds the samples of another cycle.
void add(std::vector<std::vector<Result>> &sums, const std::vector<Result> &results)
{
    sums.resize(results.size());
    for (std::size_t i = 0; i < results.size(); ++i)
        sums[i].push_back(results[i]);
}

Result medianOf(const std::vector<Result> &results)
{
    Result all = results.front();
    std::vector<double> calls;
    all.kept = all.slept = all.tries = 0;
    for (const Result &result : results) {
        calls.push_back(result.figures.call);
        all.kept += result.kept;
        all.slept += result.slept;
        all.tries += result.tries;
    }
    all.figures.call = median(calls);
    return all;
}

/// The table can only grow, so every cycle begins with a new one.
void measureModules()
{
    constexpr Setup setup{5000, 50, false, false};
    std::vector<std::vector<Result>> few;
    std::vector<std::vector<Result>> many;
    std::vector<double> growth;
    for (int cycle = 0; cycle < cycles; ++cycle) {
        startLibrary();
        setFlags("displayModuleName");
        const moduleId last = fewModules - 1;
        Debug::setModuleDescription(last, "Measured", "Measured");
        describeModule(last);
        Debug::setOutputReceiver(last, ignoreLine);
        add(few, measure(setup, subjects(fewModules, last)));
        growth.push_back(makeModules(last, manyModules - 1) * 1e-6);
        const moduleId added = makeModule("Measured");
        Debug::setOutputReceiver(added, ignoreLine);
        add(many, measure(setup, subjects(manyModules, added)));
        Debug::exitDebug();
    }
    Table table("Number of modules", Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < few.size(); ++i) {
        table.row(medianOf(few[i]));
        table.row(medianOf(many[i]), medianOf(few[i]), 1.2);
    }
    table.note("Making " + std::to_string(manyModules)
               + " modules and asking each once: " + number(median(growth), 0) + " ms.");
}

void measureThreads()
{
    startLibrary();
    setFlags("activateFileProtocol,displayModuleName");
    Debug::setOutputFileName(dataFile("scaling.log").c_str());
    const moduleId module = makeModule("Measured");
    Debug::setOutputReceiver(module, ignoreLine);
    const auto print =
        repeated([module, line = text()] { Debug::println(module, enabledClass, line, infoLevel); });
    constexpr Setup setup{960, 40, true, false};
    const std::vector<Result> results =
        measure(setup, onThreads({1, 2, 3, 4, 6, 8}, {{"println() to the file", print}}));
    Table table("Threads that print to one file", Table::Unit::Microseconds);
    table.row(results[0]);
    for (std::size_t i = 1; i < results.size(); ++i)
        table.row(results[i], results[0], 1.25);
    table.note("How long all took over the lines of all: 0.8 times the throughput is 1.25 times the "
               "time. Samples with more threads than cores all count.");
}

} // namespace

int main()
{
    measureModules();
    measureThreads();
}
