#include <zorvan/debug.h>

namespace Zorvan {

void gyxAssert(const QString &, const QString &, const char *, int) {}

} // namespace Zorvan
