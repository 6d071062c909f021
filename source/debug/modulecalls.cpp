// Members of the facade about modules, their names and their descriptions.

#include "debug/moduletable.h"
#include "debug/normalizedname.h"
#include "debug/outputgate.h"
#include "debug/receivers.h"
#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"

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
    if (!hasGlobalReceiver())
        guibridge::requestRedraw();
}

/// Stores the descriptions, then applies the module's saved setting of that kind, all under the lock.
void describe(moduleId id, const Descriptions *Module::*kind, int count, const char **descriptions,
              const char *keySuffix, const char *defaultSpec, void (*apply)(moduleId, const QString &))
{
    {
        ModuleTable &table = moduleTable();
        const platform::Locked guard(table.lock());
        Module *const module = table.find(id);
        if (module == nullptr)
            return;
        module->*kind = Descriptions::intern(count, descriptions);
        const QString key = fromLatin1(module->description) + QLatin1String(keySuffix);
        apply(id, host::readString(key, QLatin1String(defaultSpec)));
    }
    requestRedrawUnlessReceived();
}

const char **descriptionsOf(moduleId id, const Descriptions *Module::*kind, int *count)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    const Module *const module = table.find(id);
    const Descriptions *const descriptions = module ? module->*kind : Descriptions::none();
    if (count)
        *count = descriptions->count();
    return descriptions->array();
}

} // namespace

void checkConfig()
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    table.build();
}

moduleId Debug::createModule(const char *name, const char *description)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    if (name && std::strcmp(name, "DebugServerClient") == 0) {
        checkConfig();
        guibridge::setClientMode();
    }
    // -1 without a table: any other id would belong to a module made after initDebug().
    const moduleId id = table.add();
    setModuleDescription(id, name, description);
    return id;
}

void Debug::setModuleDescription(moduleId id, const char *name, const char *description)
{
    ModuleTable &table = moduleTable();
    {
        const platform::Locked guard(table.lock());
        Module *const module = table.find(id);
        if (module == nullptr)
            return;
        module->description = description ? description : "";
        table.rename(id, name ? name : "");
    }
    guibridge::requestRebuild();
}

QString Debug::getModuleName(moduleId id)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    const Module *const module = table.find(id);
    return module ? getNormalizedName(fromLatin1(module->prefix)) : QString();
}

const char **Debug::getModuleNames(int *count, int **ids)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    if (!table.exists()) {
        if (count)
            *count = 0;
        if (ids)
            *ids = nullptr;
        return nullptr;
    }
    const int number = table.count();
    auto *const names = new const char *[static_cast<std::size_t>(number)];
    if (ids)
        *ids = new int[static_cast<std::size_t>(number)];
    for (moduleId id = 0; id < number; ++id) {
        names[id] = newCopy(table.find(id)->prefix);
        if (ids)
            (*ids)[id] = id;
    }
    if (count)
        *count = number;
    return names;
}

void Debug::releaseModuleNames(const char **names, int count, int *ids)
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
