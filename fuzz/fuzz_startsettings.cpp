// What the host has stored for the start of the library: whatever it is, the library prints with it, and
// stores a configuration that the next start finds again.

#include "debug/settings.h"
#include "fuzzcheck.h"
#include "fuzzhost.h"
#include "host/savedconfiguration.h"

using namespace Zorvan;

namespace {

/// The configuration that is stored after a start with the one that is stored now.
QMap<QString, QString> startedAndSaved(Host &host, moduleId module)
{
    Debug::enableSettings({});
    readStartSettings();
    describe(module);
    require(Debug::getClippingLevel(module) >= -1 && Debug::getClippingLevel(module) < Host::levels);
    host::saveConfiguration();
    require(host.prints(module));
    return host.settings();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Host host;
    static const moduleId module = (Debug::initDebug(), createDescribedModule("Fuzzed"));
    require(host.prints(module)); // or it would not be in use, and nothing of it stored
    Input input(data, size);
    host.settings().clear();
    for (const char *const key : {"FuzzedDebugClasses", "FuzzedDebugLevel", "DebugServerFile",
                                  "DebugServerFileSize", "DebugServerFileOutput", "DebugServerShowModule",
                                  "DebugServerShowTimestamp", "DebugServerAllowClear"}) {
        // Without a separator every name is one below a folder that cannot exist.
        const QString value = QString::fromStdString(std::string(input.line())).remove(QLatin1Char('/'));
        if (!value.isEmpty())
            host.settings()[QString::fromLatin1(key)] = value;
    }
    const QMap<QString, QString> saved = startedAndSaved(host, module);
    require(saved.contains(QStringLiteral("DebugServerFileSize")));
    require(startedAndSaved(host, module) == saved);
    return 0;
}
