// The functions with which a host instruments its code.

#include "leakanalyzer/analysisoutput.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/methodtiming.h"

#include <zorvan/analysis.h>

void *xmalloc(std::size_t size, const char *file, int line)
{
    return Zorvan::analysis::allocate(size, file, line, false);
}

void *xcalloc(std::size_t size, const char *file, int line)
{
    return Zorvan::analysis::allocateZeroed(size, file, line);
}

void *xrealloc(void *old, std::size_t size, const char *file, int line)
{
    return Zorvan::analysis::reallocate(old, size, file, line);
}

void xfree(void *block, const char *, int)
{
    Zorvan::analysis::freeBlock(block);
}

int make_id(const char *file, int line)
{
    return Zorvan::analysis::makeMethodId(file, line);
}

void installanalysisMessageHandler(Zorvan::IAnalysisOutputInterface *handler)
{
    Zorvan::analysis::setOutputHandler(handler);
}

namespace Zorvan {

void methodTracker::start(const char *file, int line, const char *methodName) const
{
    analysis::startMethod(static_cast<unsigned>(m_id), file, line, methodName);
}

void methodTracker::end() const
{
    analysis::endMethod(static_cast<unsigned>(m_id));
}

} // namespace Zorvan
