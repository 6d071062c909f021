#include "host/savedconfiguration.h"

#include "host/hosthandlers.h"
#include "host/modulenames.h"

namespace Zorvan::host {

namespace {

struct FlagKey
{
    const char *key;
    int flag; ///< of Debug::getDisplayFlags()
};

constexpr FlagKey flagKeys[] = {
    {"DebugServerFileOutput", 1},     {"DebugServerThrowAssert", 16}, {"DebugServerShowTimestamp", 256},
    {"DebugServerShowThreadID", 512}, {"DebugServerShowModule", 2},   {"DebugServerConsoleOutput", 1024},
    {"DebugServerAllowClear", 32},
};

void write(const char *key, const QString &value)
{
    writeString(QString::fromLatin1(key), value);
}

void saveFilters()
{
    if (Debug::isClient() || Debug::isServer())
        return;
    write("DebugServerRegexpFilter", Debug::getOutputFilter());
    write("DebugServerLevelsFilter", Debug::getLevelFilter());
}

void saveModules()
{
    const int count = ModuleNames().count();
    for (moduleId id = 0; id < count; ++id)
        Debug::makeCurrentSettingsDefault(id);
}

void saveFlags()
{
    const int flags = Debug::getDisplayFlags();
    for (const FlagKey &entry : flagKeys)
        write(entry.key, (flags & entry.flag) != 0 ? QStringLiteral("On") : QStringLiteral("Off"));
}

} // namespace

void saveConfiguration()
{
    Debug::activateHooks("DebugServerMakeDefaultHook", "");
    saveFilters();
    saveModules();
    saveFlags();
    write("DebugServerFile", QString::fromLatin1(Debug::getOutputFileName()));
    write("DebugServerFileSize", QString::number(Debug::getMaxOutputFileSize()));
    write("serverPortOpen", QString::number(Debug::clientsAllowed() ? 1 : 0));
}

} // namespace Zorvan::host
