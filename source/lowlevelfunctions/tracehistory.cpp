#include <zorvan/debug.h>

namespace Zorvan {

void logHistory(const char *, int, const char *, va_list *) {}
void logHistory(const char *, int, const char *, ...) {}
void dumpLogHistory() {}

} // namespace Zorvan
