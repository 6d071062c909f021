#include "debug/settings.h"

#include "debug/displayflags.h"
#include "debug/moduletable.h"
#include "debug/outputfile.h"
#include "debug/outputgate.h"
#include "host/hosthandlers.h"
#include "host/normalizedname.h"
#include "platform/folders.h"

#include <QDir>

namespace Zorvan {

namespace {

using displayflags::Flag;

/// The words of settings strings, in their order.
constexpr displayflags::FlagKey settingsWords[] = {
    {"activateFileProtocol", Flag::fileOutput},
    {"throwAssertion", Flag::throwAssertion},
    {"displayTimeStamp", Flag::timeStamp},
    {"displayThreadID", Flag::threadId},
    {"displayModuleName", Flag::moduleName},
    {"activateConsoleOutput", Flag::consoleOutput},
    {"allowProgrammaticClear", Flag::allowProgrammaticClear},
};
constexpr const char *disableOutputWord = "disableOutput";

bool isSwitchedOn(const char *key)
{
    return host::readString(QLatin1String(key), QStringLiteral("Off"))
        .toLower()
        .contains(QLatin1String("on"));
}

QString storedFileName()
{
    QString name =
        host::readString(QStringLiteral("DebugServerFile"), QStringLiteral("GYX_Debug_Output.log"));
    if (!QDir::isRelativePath(name))
        return name;
    return QString::fromStdString(platform::programDataFolder()) + QLatin1Char('/') + name;
}

void setOutputFile(const QString &name)
{
    const TableLock guard;
    outputFile().setName(name);
}

void storeIfChanged(const QString &key, const QString &defaultValue, const QString &current)
{
    if (host::readString(key, defaultValue) != current)
        host::writeString(key, current);
}

} // namespace

void readStartSettings()
{
    platform::makeProgramDataFolder();
    setOutputFile(storedFileName());
    Debug::setMaxOutputFileSize(host::readInteger(QStringLiteral("DebugServerFileSize"), -1));
    displayflags::change(Flag::moduleName, isSwitchedOn(displayflags::storedModuleName.key));
    for (const displayflags::FlagKey &setting : displayflags::storedFlags) {
        if (isSwitchedOn(setting.key))
            displayflags::change(setting.flag, true);
    }
}

void Debug::enableSettings(const QString &text)
{
    for (const displayflags::FlagKey &word : settingsWords)
        displayflags::change(word.flag, text.contains(QLatin1String(word.key)));
    setupOutputEnabled(!text.contains(QLatin1String(disableOutputWord)));
}

QString Debug::getEnabledSettings()
{
    const unsigned flags = displayflags::word();
    QString text;
    for (const displayflags::FlagKey &word : settingsWords) {
        if (displayflags::has(flags, word.flag))
            text += QLatin1String(word.key) + QLatin1Char(',');
    }
    if (!outputEnabled())
        text += QLatin1String(disableOutputWord) + QLatin1Char(',');
    return text;
}

void Debug::makeCurrentSettingsDefault(moduleId id)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    if (module == nullptr || !module->inUse)
        return;
    const QString description = fromLatin1(module->description);
    const QString level = getEnabledMessageLevel(id);
    const QString classes = getEnabledMessageClasses(id);
    storeIfChanged(description + QLatin1String("DebugClasses"), QStringLiteral("all"), classes);
    storeIfChanged(description + QLatin1String("DebugLevel"), QStringLiteral("critical"), level);
}

} // namespace Zorvan
