// Commands of remote clients: anybody who reaches the port may send them.

#include "debugserverqueue/debugxmlparser.h"
#include "debugserverqueue/unitlimits.h"
#include "fuzzcheck.h"

#include <zorvan/debug.h>

#include <QMap>

#include <cstdint>
#include <cstdio>

using Zorvan::Debug;
using Zorvan::moduleId;

namespace {

constexpr int deepestUnit = 256;
constexpr int levels = 3;

/// Keeps the settings in memory, and the last line.
class Host final : public Zorvan::IUtilityInterface
{
public:
    QString readStringSetting(const char *, const QString &key, const QString &defaultValue) override
    {
        return settings.value(key, defaultValue);
    }
    void writeStringSetting(const char *, const QString &key, const QString &value) override
    {
        settings[key] = value;
    }
    void outputLine(const QString &line) override { lastLine = line; }

    QMap<QString, QString> settings;
    QString lastLine;
};

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

Host s_host;
Hook s_hook;

/// Without an application there is no queue, and none of the library's own hooks, which show boxes and start
/// threads. No file can be made: commands may switch the output file on.
moduleId startLibrary()
{
    stdout = std::fopen("/dev/null", "w");
    qputenv("ZORVAN_PROGRAMDATA", "/dev/null");
    Debug::setUtilityCallbackHandler(&s_host);
    Debug::initDebug();
    Debug::setOutputFileName("/dev/null/none");
    const moduleId module = Debug::createModule("Fuzzed", "Fuzzed");
    const char *levelNames[levels] = {"<Critical>: ", "<   Error>: ", "<    Info>: "};
    Debug::setMessageLevelDescriptions(module, levels, levelNames);
    const char *classNames[] = {"<debug message>, ", "<  time, meas  >, "};
    Debug::setMessageClassDescriptions(module, 2, classNames);
    for (const char *const key : {"count", "unit"})
        Debug::installHook(key, &s_hook, true);
    return module;
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

/// With the configuration of the start, the library prints.
void checkLibrary(moduleId module)
{
    require(Debug::getClippingLevel(module) >= -1 && Debug::getClippingLevel(module) < levels);
    Debug::enableSettings({});
    Debug::setOutputFilter({});
    Debug::setLevelFilter({});
    Debug::enableLevel(module, QStringLiteral("full"));
    Debug::enableClasses(module, QStringLiteral("all"));
    s_host.settings.clear();
    Debug::println(module, 1, QStringLiteral("still here"), levels - 1);
    require(s_host.lastLine.endsWith(QLatin1String("still here")));
    s_host.lastLine.clear();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const moduleId module = startLibrary();
    const QString unit = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<int>(size));
    const QString harmless = Zorvan::harmlessPart(unit);
    require(unit.startsWith(harmless));
    require(execute(unit) == commandsOf(harmless));
    checkLibrary(module);
    return 0;
}
