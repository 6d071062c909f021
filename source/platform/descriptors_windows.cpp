#include "platform/descriptors.h"

namespace Zorvan::platform {

std::string descriptorShortage(int)
{
    return {};
}

} // namespace Zorvan::platform
