// Members of the facade about modules, their names and their descriptions.

#include "debug/moduletable.h"
#include "debug/outputgate.h"
#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"
#include "host/normalizedname.h"

#include <cstring>

namespace Zorvan {

namespace {

const char *newCopy(const std::string &text)
{
    auto *const copy = new char[text.size() + 1];
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

void requestRedrawUnlessReceived()
{
    if (!TableState::hasGlobalReceiver())
        guibridge::requestRedraw();
}

/// Stores the descriptions, then applies the module's saved setting of that kind, all under the lock.
void describe(moduleId id, const Descriptions *Module::*kind, int count, const char **descriptions,
              const char *keySuffix, const char *defaultValue, void (*apply)(moduleId, const QString &))
{
    {
        const TableLock guard;
        Module *const module = moduleTable().find(id);
        if (module == nullptr)
            return;
        module->*kind = Descriptions::intern(count, descriptions);
        const QString key = fromLatin1(module->description) + QLatin1String(keySuffix);
        apply(id, host::readString(key, QLatin1String(defaultValue)));
    }
    requestRedrawUnlessReceived();
}

const char **descriptionsOf(moduleId id, const Descriptions *Module::*kind, int *count)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    const Descriptions *const descriptions = module ? module->*kind : Descriptions::none();
    if (count)
        *count = descriptions->count();
    return descriptions->array();
}

} // namespace

void checkConfig()
{
    const TableLock guard;
    moduleTable().build();
}

moduleId Debug::createModule(const char *name, const char *description)
{
    const TableLock guard;
    if (name && std::strcmp(name, "DebugServerClient") == 0) {
        checkConfig();
        guibridge::setClientMode();
        guibridge::switchWindowOff();
    }
    // -1 without a table: any other id would belong to a module made after initDebug().
    const moduleId id = moduleTable().add();
    setModuleDescription(id, name, description);
    return id;
}

void Debug::setModuleDescription(moduleId id, const char *name, const char *description)
{
    {
        const TableLock guard;
        Module *const module = moduleTable().find(id);
        if (module == nullptr)
            return;
        module->description = description ? description : "";
        moduleTable().rename(id, name ? name : "");
    }
    guibridge::requestRebuild();
}

QString Debug::getModuleName(moduleId id)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    return module ? getNormalizedName(fromLatin1(module->prefix)) : QString();
}

const char **Debug::getModuleNames(int *count, int **ids)
{
    const TableLock guard;
    if (!ModuleTable::exists()) {
        if (count)
            *count = 0;
        if (ids)
            *ids = nullptr;
        return nullptr;
    }
    const int number = moduleTable().count();
    auto *const names = new const char *[static_cast<std::size_t>(number)];
    if (ids)
        *ids = new int[static_cast<std::size_t>(number)];
    for (moduleId id = 0; id < number; ++id) {
        names[id] = newCopy(moduleTable().find(id)->prefix);
        if (ids)
            (*ids)[id] = id;
    }
    if (count)
        *count = number;
    return names;
}

void Debug::releaseModuleNames(const char **names, int count, const int *ids)
{
    for (int i = 0; names && i < count; ++i)
        delete[] names[i];
    delete[] names;
    delete[] ids;
}

void Debug::setMessageClassDescriptions(moduleId module, int count, const char **descriptions)
{
    describe(module, &Module::classes, count, descriptions, "DebugClasses", "all", enableClasses);
}

void Debug::setMessageClassDescriptions(moduleId module, int count, char **descriptions)
{
    setMessageClassDescriptions(module, count, const_cast<const char **>(descriptions));
}

const char **Debug::getMessageClassDescriptions(moduleId module, int *count)
{
    return descriptionsOf(module, &Module::classes, count);
}

void Debug::setMessageLevelDescriptions(moduleId module, int count, const char **descriptions)
{
    describe(module, &Module::levels, count, descriptions, "DebugLevel", "critical", enableLevel);
}

void Debug::setMessageLevelDescriptions(moduleId module, int count, char **descriptions)
{
    setMessageLevelDescriptions(module, count, const_cast<const char **>(descriptions));
}

const char **Debug::getMessageLevelDescriptions(moduleId module, int *count)
{
    return descriptionsOf(module, &Module::levels, count);
}

} // namespace Zorvan
