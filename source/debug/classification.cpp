// Members of the facade about which classes and levels a module lets through.

#include "debug/moduletable.h"
#include "debug/normalizedname.h"
#include "debug/outputgate.h"
#include "debug/receivers.h"
#include "debugserverqueue/guibridge.h"

#include <QStringList>

#include <algorithm>
#include <vector>

namespace Zorvan {

namespace {

constexpr int everyClass = -1;
constexpr int everyClassInverted = -2;
constexpr int silent = -1; // clipping level
constexpr int infoLevel = 3;

int classCount(moduleId id)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    const Module *const module = table.find(id);
    return module ? module->classes->count() : 0;
}

void storeClassState(moduleId id, int cls, bool enabled)
{
    {
        ModuleTable &table = moduleTable();
        const platform::Locked guard(table.lock());
        Module *const module = table.find(id);
        if (module == nullptr)
            return;
        module->classStates[cls].enabled = enabled;
        if (static_cast<unsigned>(cls) < 64) {
            std::atomic<std::uint64_t> &bits = table.switches(id)->enabledClasses;
            const std::uint64_t bit = std::uint64_t(1) << cls;
            const std::uint64_t old = bits.load(std::memory_order_relaxed);
            bits.store(enabled ? old | bit : old & ~bit, std::memory_order_relaxed);
        }
    }
    setOutputEnabled(true);
}

/// " description" of every class that is enabled or was never touched.
QString classMask(const Module &module)
{
    QString mask;
    for (int cls = 0; cls < module.classes->count(); ++cls) {
        const auto state = module.classStates.find(cls);
        if (state == module.classStates.end() || state->second.enabled)
            mask += QLatin1Char(' ') + fromLatin1(module.classes->text(cls));
    }
    return mask;
}

void printNotice(const QString &text)
{
    Debug::println(libraryModule, 0, text, infoLevel);
}

void printClassMask(moduleId id)
{
    if (!Debug::isActive(libraryModule, infoLevel, 0))
        return;
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    if (const Module *const module = table.find(id)) {
        printNotice(QStringLiteral("new message class mask for module ") + fromLatin1(module->name)
                    + QLatin1Char(':'));
    }
    if (!Debug::isActive(libraryModule, infoLevel, 0))
        return; // printing ran host code, which may have changed anything
    if (const Module *const module = table.find(id))
        printNotice(classMask(*module));
}

/// Enables or disables one class, or all of them for -1, or all with the sense inverted for -2. The two special
/// numbers keep an entry of their own besides, which says what messages of that class number get.
void switchClass(moduleId id, int cls, bool enable)
{
    if (moduleTable().switches(id) == nullptr)
        return;
    if (cls == everyClass || cls == everyClassInverted) {
        const int count = classCount(id);
        for (int each = 0; each < count; ++each)
            storeClassState(id, each, (cls == everyClass) == enable);
        printClassMask(id);
    }
    storeClassState(id, cls, enable);
}

/// Classes whose normalized description begins with \a piece (lower case).
std::vector<int> classesBeginningWith(moduleId id, const QString &piece)
{
    std::vector<int> classes;
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    const Module *const module = table.find(id);
    for (int cls = 0; module && cls < module->classes->count(); ++cls) {
        if (normalizedName(fromLatin1(module->classes->text(cls))).toLower().startsWith(piece))
            classes.push_back(cls);
    }
    return classes;
}

} // namespace

void Debug::enableMessageClassType(moduleId module, int cls)
{
    switchClass(module, cls, true);
}

void Debug::disableMessageClassType(moduleId module, int cls)
{
    switchClass(module, cls, false);
}

void Debug::enableClasses(moduleId module, const QString &spec)
{
    // Words count anywhere in the text: "small" enables everything, "nonetheless" nothing.
    const QString wanted = spec.toLower();
    if (wanted.contains(QLatin1String("none"))) {
        disableMessageClassType(module, everyClass);
        return;
    }
    if (wanted.contains(QLatin1String("all"))) {
        enableMessageClassType(module, everyClass);
        return;
    }
    disableMessageClassType(module, everyClass);
    const QStringList pieces = wanted.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &piece : pieces) {
        for (const int cls : classesBeginningWith(module, piece))
            enableMessageClassType(module, cls);
    }
}

QString Debug::getEnabledMessageClasses(moduleId id)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    if (!table.exists())
        return QString();
    const Module *const module = table.find(id);
    if (module == nullptr)
        return QStringLiteral("none");
    bool all = true;
    bool any = false;
    QStringList enabled;
    for (auto state = module->classStates.lower_bound(0); state != module->classStates.end(); ++state) {
        all = all && state->second.enabled;
        any = any || state->second.enabled;
        if (state->second.enabled && state->first < module->classes->count())
            enabled += normalizedName(fromLatin1(module->classes->text(state->first)));
    }
    if (all)
        return QStringLiteral("all");
    return any ? enabled.join(QLatin1Char(',')) : QStringLiteral("none");
}

void Debug::enableLevel(moduleId id, const QString &spec)
{
    const Descriptions *levels = nullptr;
    {
        ModuleTable &table = moduleTable();
        const platform::Locked guard(table.lock());
        const Module *const module = table.find(id);
        if (module == nullptr)
            return;
        levels = module->levels;
    }
    const QString wanted = spec.toLower();
    if (wanted.contains(QLatin1String("release"))) {
        setClippingLevel(id, silent);
        return;
    }
    if (wanted.contains(QLatin1String("full"))) {
        setClippingLevel(id, levels->count() - 1);
        return;
    }
    for (int level = 0; level < levels->count(); ++level) {
        if (fromLatin1(levels->text(level)).toLower().contains(wanted))
            setClippingLevel(id, level);
    }
}

QString Debug::getEnabledMessageLevel(moduleId id)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    const Module *const module = table.find(id);
    if (module == nullptr)
        return QString();
    const int level = table.switches(id)->clippingLevel.load(std::memory_order_relaxed);
    return level < 0 ? QStringLiteral("release") : normalizedName(fromLatin1(module->levels->text(level)));
}

void Debug::setClippingLevel(moduleId id, int level)
{
    {
        ModuleTable &table = moduleTable();
        const platform::Locked guard(table.lock());
        const Module *const module = table.find(id);
        if (module == nullptr)
            return;
        const int highest = module->levels->count() - 1;
        table.switches(id)->clippingLevel.store(std::min(level, highest), std::memory_order_relaxed);
    }
    setOutputEnabled(true);
    if (!hasGlobalReceiver())
        guibridge::requestRedraw();
}

int Debug::getClippingLevel(moduleId id)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    if (!table.exists())
        return 0;
    const ModuleSwitches *const switches = table.switches(id);
    return switches ? switches->clippingLevel.load(std::memory_order_relaxed) : -1;
}

} // namespace Zorvan
