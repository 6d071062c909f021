// The file of low-level properties: anything may stand in it.

#include "fuzzcheck.h"
#include "lowlevelfunctions/propertiesfile.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Zorvan::PropertyValues values = Zorvan::initialPropertyValues();
    Zorvan::parseProperties({reinterpret_cast<const char *>(data), size}, values);
    Zorvan::PropertyValues again{};
    Zorvan::parseProperties(Zorvan::propertiesText(values), again);
    require(again == values);
    return 0;
}
