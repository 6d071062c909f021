// The buffer of the debug window, ring and filter index: whatever is done with it in whatever order, it shows
// what its plain model shows.

#include "../tests/debugwindow/plainbuffer.h"
#include "fuzzcheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool isQuiet = qputenv("ZORVAN_PROGRAMDATA", "/dev/null"); // blocks that fail are logged
    require(isQuiet && Zorvan::test::behaveAlike(data, size));
    return 0;
}
