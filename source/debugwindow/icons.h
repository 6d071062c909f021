#pragma once

#include <QIcon>

namespace Zorvan {

/// Keeps the icons registered under ":/icons/", for as long as one such object lives. Icons of a window need
/// theirs until they are painted for the last time. The GUI thread only.
class IconResource
{
public:
    IconResource();
    ~IconResource();
    IconResource(const IconResource &) = delete;
    IconResource &operator=(const IconResource &) = delete;
};

/// The icon \a name, such as "clearlog", for 16 and 24 pixels on displays of any density; no picture if there
/// is none of this name.
[[nodiscard]] QIcon icon(const char *name);

} // namespace Zorvan
