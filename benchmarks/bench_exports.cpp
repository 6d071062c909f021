// What the functions with C linkage cost beside the members that they stand for, and the macros that ask
// before they build a text.

#include "host.h"
#include "table.h"

#include <zorvan/debug.h>
#include <zorvan/exports.h>

#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int clippingLevel = 2;
constexpr int refusedLevel = infoLevel;
constexpr double allowedMore = 2.0; // nanoseconds
constexpr std::size_t blockSize = 100;
constexpr Setup quick{20000, 200, false, false};
constexpr Setup slow{2000, 100, false, false};

const char *const messageText = "frequency set to 1000000000 Hz, level -10.50 dBm";

std::atomic<int> s_inlineLevel{clippingLevel};
std::atomic<int> s_inlineLevels[64];

/// Each pair: the member, then the function with C linkage.
std::vector<Subject> quickPairs(moduleId module, const QString &text, Zorvan::ressourceInfo *watch)
{
    return {
        {"Debug::isActive()", repeated([module] {
             benchmark::DoNotOptimize(Debug::isActive(module, refusedLevel, enabledClass));
         })},
        {"isActive()",
         repeated([module] { benchmark::DoNotOptimize(::isActive(module, refusedLevel, enabledClass)); })},
        {"Debug::println(), refused, text ready",
         repeated([module, &text] { Debug::println(module, enabledClass, text, refusedLevel); })},
        {"println(), refused",
         repeated([module] { ::println(module, enabledClass, messageText, refusedLevel, 0, nullptr, -1); })},
        {"xmalloc() and xfree()", repeated([] {
             void *const block = xmalloc(blockSize, __FILE__, __LINE__);
             benchmark::DoNotOptimize(block);
             xfree(block, __FILE__, __LINE__);
         })},
        {"alloc() and release()", repeated([] {
             void *const block = ::alloc(blockSize, __FILE__, __LINE__, false, false);
             benchmark::DoNotOptimize(block);
             ::release(block);
         })},
        {"Debug::startMeasurement() and stopMeasurement()", repeated([watch] {
             Debug::startMeasurement(watch);
             Debug::stopMeasurement(watch);
         })},
        {"startMeasurement() and stopMeasurement()", repeated([watch] {
             benchmark::DoNotOptimize(::startMeasurement(watch));
             benchmark::DoNotOptimize(::stopMeasurement(watch));
         })},
        {"Debug::getClippingLevel()",
         repeated([module] { benchmark::DoNotOptimize(Debug::getClippingLevel(module)); })},
        {"getClippingLevel()", repeated([module] { benchmark::DoNotOptimize(::getClippingLevel(module)); })},
    };
}

std::vector<Subject> slowPairs(moduleId module)
{
    return {
        {"Debug::setClippingLevel()", repeated([module] { Debug::setClippingLevel(module, clippingLevel); })},
        {"setClippingLevel()", repeated([module] { ::setClippingLevel(module, clippingLevel); })},
        {"Debug::enableLevel()",
         repeated([module] { Debug::enableLevel(module, QString::fromLatin1("warning")); })},
        {"enableLevel()", repeated([module] { ::enableLevel(module, "warning"); })},
        {"Debug::println(), printed",
         repeated([module] { Debug::println(module, enabledClass, QString::fromLatin1(messageText), 0); })},
        {"println(), printed",
         repeated([module] { ::println(module, enabledClass, messageText, 0, 0, nullptr, -1); })},
    };
}

void printPairs(Table &table, const std::vector<Result> &results)
{
    for (std::size_t i = 0; i < results.size(); i += 2) {
        table.row(results[i]);
        table.row(results[i + 1], results[i], 1.0 + allowedMore / results[i].figures.call);
    }
}

void printMacros(moduleId module)
{
    const auto build = [](int frequency) {
        return QStringLiteral("frequency set to %1 Hz, level %2 dBm").arg(frequency).arg(-10.5);
    };
    const std::vector<Result> results = measure(
        quick,
        onThreads({1, 2},
                  {{"inline load and compare", repeated([] {
                        benchmark::DoNotOptimize(refusedLevel
                                                 <= s_inlineLevel.load(std::memory_order_relaxed));
                    })},
                   {"inline load and compare, by module id", repeated([module] {
                        benchmark::DoNotOptimize(refusedLevel
                                                 <= s_inlineLevels[module].load(std::memory_order_relaxed));
                    })},
                   {"ZORVAN_PRINT, refused, by module id", repeated([module, build] {
                        ZORVAN_PRINT(module, enabledClass, refusedLevel, build(1000000000));
                    })},
                   {"ZORVAN_PRINT, refused, constant module",
                    repeated([build] { ZORVAN_PRINT(2, enabledClass, refusedLevel, build(1000000000)); })},
                   {"ZORVAN_PRINT_EVERY, refused", repeated([module, build] {
                        ZORVAN_PRINT_EVERY(10, module, enabledClass, refusedLevel, build(1000000000));
                    })},
                   {"Debug::isActive()", repeated([module] {
                        benchmark::DoNotOptimize(Debug::isActive(module, refusedLevel, enabledClass));
                    })},
                   {"Debug::println(), text built first", repeated([module, build] {
                        Debug::println(module, enabledClass, build(1000000000), refusedLevel);
                    })}}));
    constexpr std::size_t subjects = 7;
    Table table("A message that is not wanted, by the macros", Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < results.size(); ++i) {
        const std::size_t subject = i % subjects;
        const Result &constant = results[i - subject];
        if (subject == 2)
            table.row(results[i], results[i - 1], 2.0);
        else if (subject == 3)
            table.row(results[i], constant, 2.0);
        else
            table.row(results[i], constant);
    }
}

} // namespace

int main()
{
    startLibrary();
    setFlags("displayModuleName");
    const moduleId module = makeModule("Measured");
    for (const moduleId each : {module, 2}) {
        describeModule(each);
        Debug::setOutputReceiver(each, ignoreLine);
        Debug::setClippingLevel(each, clippingLevel);
        Debug::isActive(each, 0, 0);
    }
    const QString text = QString::fromLatin1(messageText);
    Zorvan::ressourceInfo *const watch = Debug::createMeasurement(module, 0, 0);
    {
        Table table("Functions with C linkage beside the members", Table::Unit::Nanoseconds);
        printPairs(table, measure(quick, quickPairs(module, text, watch)));
        printPairs(table, measure(slow, slowPairs(module)));
        table.note("Wanted: at most 2 ns more than the member.");
    }
    delete watch;
    printMacros(module);
}
