// How costs grow with the number of modules.

#include "comparison.h"
#include "debugserverqueue/debugxmlparser.h"
#include "host.h"

#include <benchmark/benchmark.h>

using namespace bench;
using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

struct Question
{
    const char *what;
    Setup setup;
    std::function<void()> ask;
};

/// All are asked of the module that was made last.
std::vector<Question> questions(moduleId last)
{
    constexpr Setup quick{20000, 30, false, false};
    constexpr Setup short_{2000, 30, false, false};
    constexpr Setup long_{2, 30, false, false};
    const QString text = QStringLiteral("frequency set to 1000000000 Hz, level -10.50 dBm");
    const QString unit = QStringLiteral("<filter module=\"no such module\" level=\"full\"/>");
    return {
        {"Message refused by its level, `println()`", quick,
         [last, text] { Debug::println(last, enabledClass, text, infoLevel); }},
        {"Line to a receiver", short_, [last, text] { Debug::println(last, enabledClass, text, 0); }},
        {"Name of a module, `getModuleName()`", short_,
         [last] { benchmark::DoNotOptimize(Debug::getModuleName(last)); }},
        {"Names of all modules, `getModuleNames()`", long_,
         [] {
             int count = 0;
             const char **const names = Debug::getModuleNames(&count);
             Debug::releaseModuleNames(names, count);
         }},
        {"Module looked up by a name that none has, a remote command", long_,
         [unit] { static_cast<void>(Zorvan::DebugXmlParser(unit).executeNext()); }},
    };
}

double timeOf(const Question &question)
{
    return measure(question.setup, {{question.what, repeated(question.ask)}}).front().figures.call;
}

/// The table of modules can only grow, and does so from one number to the next.
void showGrowth()
{
    const GrowthTable table("Modules", {27, 100, 1000, 10'000});
    std::vector<std::vector<double>> figures;
    std::vector<double> made;
    moduleId last = 26;
    Debug::setModuleDescription(last, "Measured", "Measured");
    for (const double modules : table.numbers()) {
        const int before = last + 1;
        const auto count = static_cast<int>(modules);
        const double time = makeModules(last, count);
        made.push_back(count == before ? 0 : time / (count - before));
        last = count - 1;
        describeModule(last);
        Debug::setClippingLevel(last, infoLevel - 1);
        Debug::setOutputReceiver(last, ignoreLine);
        const std::vector<Question> all = questions(last);
        figures.resize(all.size());
        for (std::size_t i = 0; i < all.size(); ++i)
            figures[i].push_back(timeOf(all[i]));
    }
    const std::vector<Question> all = questions(last);
    for (std::size_t i = 0; i < all.size(); ++i)
        table.row(all[i].what, figures[i]);
    table.row("Module made and asked for the first time, each", made);
}

} // namespace

int main()
{
    startLibrary();
    setFlags("displayModuleName");
    showGrowth();
}
