#include "host/savedconfiguration.h"

#include "host/displayflagkeys.h"
#include "host/hosthandlers.h"
#include "host/modulenames.h"

namespace Zorvan::host {

namespace {

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

void saveFlag(const displayflags::FlagKey &stored)
{
    const bool isOn = (static_cast<unsigned>(Debug::getDisplayFlags()) & stored.flag) != 0;
    write(stored.key, isOn ? QStringLiteral("On") : QStringLiteral("Off"));
}

void saveFlags()
{
    saveFlag(displayflags::storedModuleName);
    for (const displayflags::FlagKey &stored : displayflags::storedFlags)
        saveFlag(stored);
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
