#include "lowlevelfunctions/propertiesfile.h"

#include <algorithm>
#include <climits>
#include <cstdlib>

namespace Zorvan {

namespace {

constexpr std::size_t longestPiece = 63;

struct PropertyDefault
{
    const char *name;
    int value;
};

constexpr std::array<PropertyDefault, propertyCount> propertyDefaults{{
    {"analyzingToolsEnabled", propertyNotSet},
    {"analyzingOnStartup", propertyNotSet},
    {"releaseAssertEnabled", propertyNotSet},
    {"hasGraphicalGui", 1},
    {"memTrackingEnabled", propertyNotSet},
    {"timeTrackingEnabled", propertyNotSet},
    {"gyxLogMessageCount", 50000},
    {"gyxLogMessageClear", propertyNotSet},
    {"gyxLogMessageFileOutput", 1},
    {"gyxLogMessageConsoleOutput", propertyNotSet},
}};

int valueOf(std::string_view piece)
{
    const std::string number(piece.substr(0, piece.find('=')));
    const long value = std::strtol(number.c_str(), nullptr, 10);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

} // namespace

const std::size_t propertiesFileLimit = propertyCount * (longestPiece + 1);

PropertyValues initialPropertyValues()
{
    PropertyValues values{};
    std::transform(propertyDefaults.begin(), propertyDefaults.end(), values.begin(),
                   [](const PropertyDefault &property) { return property.value; });
    return values;
}

void parseProperties(std::string_view content, PropertyValues &values)
{
    for (std::size_t id = 0; id < propertyCount && !content.empty(); ++id) {
        const std::size_t lineEnd = std::min(content.find('\n'), content.size() - 1) + 1;
        const std::size_t length = std::min(lineEnd, longestPiece);
        values[id] = valueOf(content.substr(0, length));
        content.remove_prefix(length);
    }
}

std::string propertiesText(const PropertyValues &values)
{
    std::string text;
    for (std::size_t id = 0; id < propertyCount; ++id)
        text += std::to_string(values[id]) + '=' + propertyDefaults[id].name + '\n';
    return text;
}

} // namespace Zorvan
