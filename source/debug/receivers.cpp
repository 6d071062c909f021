#include "debug/receivers.h"

#include "debug/moduletable.h"

namespace Zorvan {

namespace {

constexpr moduleId allModules = -1;

std::atomic<bool> s_globalReceiver{false};

} // namespace

bool hasGlobalReceiver()
{
    return s_globalReceiver.load(std::memory_order_relaxed);
}

void Debug::setOutputReceiver(moduleId id, OutputReceiver receiver)
{
    ModuleTable &table = moduleTable();
    const platform::Locked guard(table.lock());
    if (!table.exists())
        return; // a flag without a table would keep exitDebug() from ever working
    if (id != allModules) {
        if (Module *const module = table.find(id))
            module->receiver = receiver;
        return;
    }
    for (moduleId each = 0; each < table.count(); ++each)
        table.find(each)->receiver = receiver;
    s_globalReceiver.store(receiver != nullptr, std::memory_order_relaxed);
}

} // namespace Zorvan
