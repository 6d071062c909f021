#include "host/savedconfiguration.h"

#include "host/displayflagkeys.h"
#include "host/hosthandlers.h"
#include "host/modulenames.h"
#include "host/tablestate.h"

namespace Zorvan::host {

namespace {

/// Writes nothing more once the library has ended, in a call of the host: what could be stored then would be
/// the state of a library that does not run.
class Saving
{
public:
    [[nodiscard]] bool goesOn() const { return TableState::ends() == m_ends; }
    void write(const char *key, const QString &value) const
    {
        if (goesOn())
            writeString(QString::fromLatin1(key), value);
    }

private:
    const unsigned m_ends = TableState::ends();
};

void saveFilters(const Saving &saving)
{
    if (Debug::isClient() || Debug::isServer())
        return;
    saving.write("DebugServerRegexpFilter", Debug::getOutputFilter());
    saving.write("DebugServerLevelsFilter", Debug::getLevelFilter());
}

void saveModules(const Saving &saving)
{
    const int count = ModuleNames().count();
    for (moduleId id = 0; id < count && saving.goesOn(); ++id)
        Debug::makeCurrentSettingsDefault(id);
}

void saveFlag(const Saving &saving, const displayflags::FlagKey &stored)
{
    const bool isOn = (static_cast<unsigned>(Debug::getDisplayFlags()) & stored.flag) != 0;
    saving.write(stored.key, isOn ? QStringLiteral("On") : QStringLiteral("Off"));
}

void saveFlags(const Saving &saving)
{
    for (const displayflags::FlagKey &stored : displayflags::storedFlags) {
        saveFlag(saving, stored);
        if (stored.flag == displayflags::threadId) // it is read first, but has its place here
            saveFlag(saving, displayflags::storedModuleName);
    }
}

} // namespace

void saveConfiguration()
{
    const Saving saving;
    Debug::activateHooks("DebugServerMakeDefaultHook", "");
    saveFilters(saving);
    saveModules(saving);
    saveFlags(saving);
    saving.write("DebugServerFile", QString::fromLatin1(Debug::getOutputFileName()));
    saving.write("DebugServerFileSize", QString::number(Debug::getMaxOutputFileSize()));
    saving.write("serverPortOpen", QString::number(Debug::clientsAllowed() ? 1 : 0));
}

} // namespace Zorvan::host
