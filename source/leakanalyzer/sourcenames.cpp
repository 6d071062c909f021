#include "leakanalyzer/sourcenames.h"

#include "leakanalyzer/plainmemory.h"

#include <cstdlib>
#include <cstring>
#include <unordered_map>

namespace Zorvan::analysis {

namespace {

using NameTable = std::unordered_map<const char *, const char *, std::hash<const char *>, std::equal_to<>,
                                     PlainMemory<std::pair<const char *const, const char *>>>;

NameTable &nameTable() ZORVAN_REQUIRES(analyzerLock())
{
    static auto *const table = makeLasting<NameTable>(); // methods are measured until the very end
    return *table;
}

const char *lastComponent(const char *name)
{
    const char *component = name;
    for (const char *character = name; *character != '\0'; ++character) {
        if (*character == '/' || *character == '\\' || *character == '=')
            component = character + 1;
    }
    return component;
}

} // namespace

const char *nameCopy(const char *text)
{
    if (text == nullptr)
        return nullptr;
    try {
        const char *&copy = nameTable()[text];
        if (copy == nullptr)
            copy = strdup(text);
        return copy;
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}

bool passesFilter(const char *name, const char *filter)
{
    if (filter == nullptr || *filter == '\0')
        return true;
    return name != nullptr && std::strstr(filter, lastComponent(name)) != nullptr;
}

} // namespace Zorvan::analysis
