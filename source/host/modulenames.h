#pragma once

#include <zorvan/debug.h>

namespace Zorvan::host {

/// The names of all modules at one moment, by their ids: the prefixes of the line header, with brackets and
/// padding, empty for modules that nobody has asked about. Any thread.
class ModuleNames
{
public:
    ModuleNames()
        : m_names(Debug::getModuleNames(&m_count))
    {}
    ~ModuleNames() { Debug::releaseModuleNames(m_names, m_count); }
    ModuleNames(const ModuleNames &) = delete;
    ModuleNames &operator=(const ModuleNames &) = delete;

    [[nodiscard]] int count() const { return m_count; }
    [[nodiscard]] QString name(moduleId id) const { return QString::fromLatin1(m_names[id]); }

private:
    int m_count = 0;
    const char **const m_names;
};

} // namespace Zorvan::host
