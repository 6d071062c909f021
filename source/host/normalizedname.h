#pragma once

#include <QString>

#include <string_view>

namespace Zorvan {

/// A description without ':', ',', '<', '>' and outer white space: "<       Error>: " becomes "Error".
[[nodiscard]] QString getNormalizedName(QString description);

/// Latin-1 bytes as a text.
[[nodiscard]] inline QString fromLatin1(std::string_view bytes)
{
    return QString::fromLatin1(bytes.data(), static_cast<int>(bytes.size()));
}

} // namespace Zorvan
