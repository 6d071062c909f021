#include "settingsdialog/modulelist.h"

#include "host/modulenames.h"
#include "host/normalizedname.h"

#include <QCoreApplication>
#include <QListWidget>

#include <utility>
#include <vector>

namespace Zorvan {

namespace {

using Modules = std::vector<std::pair<moduleId, QString>>;

QString translated(const char *text)
{
    return QCoreApplication::translate("Zorvan::SettingsDialog", text);
}

Modules modulesInUse()
{
    Modules modules;
    const host::ModuleNames names;
    for (moduleId id = 0; id < names.count(); ++id) {
        const QString prefix = names.name(id);
        if (prefix.isEmpty())
            continue;
        const QString name = getNormalizedName(prefix);
        modules.emplace_back(id, name.isEmpty() ? translated("(module %1)").arg(id) : name);
    }
    return modules;
}

const myModulesListItem &itemAt(const QListWidget &list, int row)
{
    return *static_cast<const myModulesListItem *>(list.item(row));
}

bool shows(const QListWidget &list, const Modules &modules)
{
    if (list.count() != static_cast<int>(modules.size()))
        return false;
    int row = 0;
    for (const auto &[id, name] : modules) {
        const myModulesListItem &item = itemAt(list, row++);
        if (item.module() != id || item.text() != name)
            return false;
    }
    return true;
}

/// Descriptions without a name become \a substitute with their index.
QStringList namesOf(const char *const *descriptions, int count, const QString &substitute)
{
    QStringList names;
    for (int i = 0; i < count; ++i) {
        const QString name = getNormalizedName(QString::fromLatin1(descriptions[i]));
        names.append(name.isEmpty() ? substitute.arg(i) : name);
    }
    return names;
}

} // namespace

myModulesListItem::myModulesListItem(moduleId module, const QString &name)
    : QListWidgetItem(name)
    , m_module(module)
{
    setToolTip(name); // the list may be too narrow for it
}

moduleId showModules(QListWidget &list, moduleId wanted)
{
    const Modules modules = modulesInUse();
    if (!shows(list, modules)) {
        list.clear();
        for (const auto &[id, name] : modules)
            list.addItem(new myModulesListItem(id, name));
    }
    int selected = 0;
    for (int row = 0; row < list.count(); ++row) {
        if (itemAt(list, row).module() == wanted)
            selected = row;
    }
    if (list.count() == 0)
        return -1;
    if (list.currentRow() != selected)
        list.setCurrentRow(selected);
    return itemAt(list, selected).module();
}

QStringList classNames(moduleId module)
{
    int count = 0;
    const char *const *const descriptions = Debug::getMessageClassDescriptions(module, &count);
    return namesOf(descriptions, count, translated("(class %1)"));
}

QStringList levelNames(moduleId module)
{
    if (module < 0)
        return {};
    int count = 0;
    const char *const *const descriptions = Debug::getMessageLevelDescriptions(module, &count);
    return QStringList(translated("release")) + namesOf(descriptions, count, translated("(level %1)"));
}

} // namespace Zorvan
