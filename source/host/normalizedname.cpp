#include "host/normalizedname.h"

#include <algorithm>

namespace Zorvan {

QString getNormalizedName(QString description)
{
    const auto isFraming = [](QChar c) { return c == u':' || c == u',' || c == u'<' || c == u'>'; };
    const auto end = std::remove_if(description.begin(), description.end(), isFraming);
    description.truncate(static_cast<int>(end - description.begin()));
    return description.trimmed();
}

} // namespace Zorvan
