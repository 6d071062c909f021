#include "debug/moduletable.h"

namespace Zorvan {

namespace {

constexpr moduleId allModules = -1;

} // namespace

void Debug::setOutputReceiver(moduleId id, OutputReceiver receiver)
{
    const TableLock guard;
    if (!ModuleTable::exists())
        return; // a flag without a table would keep exitDebug() from ever working
    if (id != allModules) {
        if (Module *const module = moduleTable().find(id))
            module->receiver = receiver;
        return;
    }
    for (moduleId each = 0; each < moduleTable().count(); ++each)
        moduleTable().find(each)->receiver = receiver;
    TableState::setGlobalReceiver(receiver != nullptr);
}

} // namespace Zorvan
