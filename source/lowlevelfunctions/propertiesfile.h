#pragma once

#include <array>
#include <string>
#include <string_view>

namespace Zorvan {

constexpr int propertyNotSet = -1;
constexpr std::size_t propertyCount = 10;
using PropertyValues = std::array<int, propertyCount>;

/// Bytes at the start of the file that can matter.
extern const std::size_t propertiesFileLimit;

[[nodiscard]] PropertyValues initialPropertyValues();

/// Takes over the values of a properties file, whatever it holds.
///
/// Lines count by their position, not by the name in them: the number before the first '=' is the value, no
/// number is 0, too large a number is clamped. Missing lines leave their values alone, lines behind the tenth
/// are ignored. A line of more than 63 bytes fills several places.
void parseProperties(std::string_view content, PropertyValues &values);

/// The file for these values: ten lines "value=name".
[[nodiscard]] std::string propertiesText(const PropertyValues &values);

} // namespace Zorvan
