// Commands of remote clients: anybody who reaches the port may send them.

#include "debugserverqueue/debugxmlparser.h"
#include "debugserverqueue/unitlimits.h"
#include "fuzzcheck.h"
#include "fuzzhost.h"

#include <QXmlStreamReader>

using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int deepestUnit = 256;

int execute(const QString &unit)
{
    Zorvan::DebugXmlParser parser(unit);
    int executed = 0;
    while (parser.executeNext())
        ++executed;
    require(!parser.executeNext());
    return executed;
}

/// Takes its parameters for a unit, which runs inside the outer one.
class Hook final : public Zorvan::IHookInterface
{
public:
    void hookActivated(char *, char *parameters) override { execute(QString::fromLatin1(parameters)); }
};

/// Without an application there is no queue, and none of the library's own hooks, which show boxes and start
/// threads.
moduleId startLibrary()
{
    static Hook hook;
    Debug::initDebug();
    Debug::setOutputFileName("/dev/null/none");
    for (const char *const key : {"count", "unit"})
        Debug::installHook(key, &hook, true);
    return createDescribedModule("Fuzzed");
}

/// How many commands a plain reader finds before the first error, or the first element that is too deep.
int commandsOf(const QString &unit)
{
    int commands = 0;
    int depth = 0;
    QXmlStreamReader reader(unit);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd() && depth <= deepestUnit) {
        const auto token = reader.readNext();
        depth -= token == QXmlStreamReader::EndElement ? 1 : 0;
        if (token != QXmlStreamReader::StartElement || ++depth > deepestUnit)
            continue;
        for (const char *const name : {"hook", "filter", "config"})
            commands += reader.name() == QLatin1String(name) ? 1 : 0;
    }
    return commands;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Host host;
    static const moduleId module = startLibrary();
    const QString unit = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QString harmless = Zorvan::harmlessPart(unit);
    require(unit.startsWith(harmless));
    require(execute(unit) == commandsOf(harmless));
    require(Debug::getClippingLevel(module) >= -1 && Debug::getClippingLevel(module) < Host::levels);
    require(host.prints(module));
    host.settings().clear();
    return 0;
}
