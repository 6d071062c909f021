// Members of the facade about which classes and levels a module lets through.

#include "debug/moduletable.h"
#include "debug/notice.h"
#include "debug/outputgate.h"
#include "debugserverqueue/guibridge.h"
#include "host/classstates.h"
#include "host/normalizedname.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace Zorvan {

namespace {

constexpr int everyClass = -1;
constexpr int everyClassInverted = -2;
constexpr int silentLevel = -1; // clipping level

void storeClassState(moduleId id, int cls, bool enabled) ZORVAN_REQUIRES(moduleTable().lock())
{
    Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return;
    module->classStates[cls].enabled = enabled;
    moduleTable().switchesChanged(id);
    setupOutputEnabled(true);
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

void printClassMask(moduleId id)
{
    if (!Debug::isActive(libraryModule, noticeLevel, 0))
        return;
    const TableLock guard;
    if (const Module *const module = moduleTable().find(id)) {
        printNotice(QStringLiteral("new message class mask for module ") + fromLatin1(module->name)
                    + QLatin1Char(':'));
    }
    if (const Module *const module = moduleTable().find(id)) // again: printing ran host code
        printNotice(classMask(*module));
}

/// The last level whose description contains a lower-case text; -1 if there is none. A name as remote clients
/// are told it ("error:" of "<       Error>: ") is in no description; that is tried last.
int lastLevelWith(const QString &wanted, const Descriptions &levels)
{
    const QString name = getNormalizedName(wanted);
    int named = -1;
    for (int level = levels.count() - 1; level >= 0; --level) {
        const QString description = fromLatin1(levels.text(level)).toLower();
        if (description.contains(wanted))
            return level;
        if (named < 0 && !name.isEmpty() && getNormalizedName(description).contains(name))
            named = level;
    }
    return named;
}

/// Enables or disables one class, or all of them for -1, or all with the sense inverted for -2. The two
/// special numbers keep an entry of their own besides, which says what messages of that class number get.
void switchClass(moduleId id, int cls, bool enable)
{
    const ChangeScope change;
    const Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return;
    if (cls == everyClass || cls == everyClassInverted) {
        const int count = module->classes->count();
        for (int each = 0; each < count; ++each)
            storeClassState(id, each, (cls == everyClass) == enable);
        printClassMask(id);
    }
    storeClassState(id, cls, enable);
}

/// Whether a text begins with one of \a beginnings, of which there may be many.
bool beginsWithOneOf(const QSet<QString> &beginnings, const QString &text)
{
    for (int length = 1; length <= text.size(); ++length) {
        if (beginnings.contains(text.left(length)))
            return true;
    }
    return false;
}

/// Classes whose normalized description begins with one of \a beginnings (lower case).
std::vector<int> classesBeginningWith(moduleId id, const QSet<QString> &beginnings)
    ZORVAN_REQUIRES(moduleTable().lock())
{
    std::vector<int> classes;
    const Module *const module = moduleTable().find(id);
    for (int cls = 0; module && cls < module->classes->count(); ++cls) {
        if (beginsWithOneOf(beginnings, getNormalizedName(fromLatin1(module->classes->text(cls))).toLower()))
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

void Debug::enableClasses(moduleId module, const QString &names)
{
    const ChangeScope change; // one for other threads, not one for each class
    // Words count anywhere in the text: "small" enables everything, "nonetheless" nothing.
    const QString wanted = names.toLower();
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
    for (const int cls : classesBeginningWith(module, QSet<QString>(pieces.begin(), pieces.end())))
        enableMessageClassType(module, cls);
}

QString Debug::getEnabledMessageClasses(moduleId id)
{
    const TableLock guard;
    if (!ModuleTable::exists())
        return QString();
    const Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return QStringLiteral("none");
    bool all = true;
    bool any = false;
    QStringList enabled;
    for (auto state = module->classStates.lower_bound(0); state != module->classStates.end(); ++state) {
        all = all && state->second.enabled;
        any = any || state->second.enabled;
        if (state->second.enabled && state->first < module->classes->count())
            enabled += getNormalizedName(fromLatin1(module->classes->text(state->first)));
    }
    if (all)
        return QStringLiteral("all");
    return any ? enabled.join(QLatin1Char(',')) : QStringLiteral("none");
}

bool host::isClassEnabled(moduleId id, int cls)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    return module != nullptr && module->isClassEnabled(cls);
}

void Debug::enableLevel(moduleId id, const QString &name)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return;
    const Descriptions *const levels = module->levels;
    const QString wanted = name.toLower();
    if (wanted.contains(QLatin1String("release"))) {
        setClippingLevel(id, silentLevel);
        return;
    }
    if (wanted.contains(QLatin1String("full"))) {
        setClippingLevel(id, levels->count() - 1);
        return;
    }
    if (const int level = lastLevelWith(wanted, *levels); level >= 0)
        setClippingLevel(id, level);
}

QString Debug::getEnabledMessageLevel(moduleId id)
{
    const TableLock guard;
    const Module *const module = moduleTable().find(id);
    if (module == nullptr)
        return QString();
    const int level = module->clippingLevel;
    return level < 0 ? QStringLiteral("release") : getNormalizedName(fromLatin1(module->levels->text(level)));
}

void Debug::setClippingLevel(moduleId id, int level)
{
    {
        const TableLock guard;
        Module *const module = moduleTable().find(id);
        if (module == nullptr)
            return;
        module->clippingLevel = std::min(level, module->levels->count() - 1);
        moduleTable().switchesChanged(id);
    }
    setupOutputEnabled(true);
    if (!TableState::hasGlobalReceiver())
        guibridge::requestRedraw();
}

int Debug::getClippingLevel(moduleId id)
{
    const TableLock guard;
    if (!ModuleTable::exists())
        return 0;
    const Module *const module = moduleTable().find(id);
    return module ? module->clippingLevel : -1;
}

} // namespace Zorvan
