#include "lowlevelfunctions/systemlog.h"

#include <zorvan/debug.h>

namespace Zorvan {

void exitDebugDaemon()
{
    dropLogChannels();
}

} // namespace Zorvan
