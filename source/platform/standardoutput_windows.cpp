#include "platform/standardoutput.h"

#include <cstdio>

namespace Zorvan::platform {

void writeStandardOutput(std::string_view bytes)
{
    std::fwrite(bytes.data(), 1, bytes.size(), stdout);
    std::fflush(stdout);
}

void writeStandardError(std::string_view bytes)
{
    std::fwrite(bytes.data(), 1, bytes.size(), stderr);
    std::fflush(stderr);
}

} // namespace Zorvan::platform
