#pragma once

#include <zorvan/debug.h>

#include <QListWidgetItem>
#include <QStringList>

class QListWidget;

namespace Zorvan {

/// An entry of the module list.
class myModulesListItem : public QListWidgetItem
{
public:
    myModulesListItem(moduleId module, const QString &name);
    [[nodiscard]] moduleId module() const { return m_module; }

private:
    const moduleId m_module;
};

/// Makes \a list show the modules in use and selects \a wanted among them, or the first. Returns the one that
/// is selected, -1 if there is none. A list that is right is left alone, with its scroll position.
moduleId showModules(QListWidget &list, moduleId wanted);

/// The classes of a module in their order; one without a name is "(class 3)".
[[nodiscard]] QStringList classNames(moduleId module);
/// The clipping levels to choose from: that which silences the module, then its levels.
[[nodiscard]] QStringList levelNames(moduleId module);

} // namespace Zorvan
