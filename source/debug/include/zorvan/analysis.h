#pragma once

/// \file
/// Instrumentation for the analysis tools: allocations that are tracked by source position, and scopes that
/// are timed. Part of <zorvan/debug.h>. The switches and reports of the tools (dumpLeaks(), dumpTimes(),
/// analyzingToolsEnabled(), ...), which plain C shares, are in <zorvan/exports.h>.
///
/// Any thread, before initDebug() and after exitDebug(), without a Qt application, while static objects are
/// built and destroyed. The tools run if the low-level property "analyzingToolsEnabled" was 1 when the
/// library was loaded; otherwise everything here costs next to nothing, and allocations are the plain ones.

#include <zorvan/export.h>

#include <atomic>
#include <cstddef>

namespace Zorvan {
class IAnalysisOutputInterface;

namespace detail {
/// 1 while methods are measured. Looked at where a scope begins: a call into the library costs more.
extern ZORVAN_EXPORT std::atomic<unsigned> timeTracking;
} // namespace detail
} // namespace Zorvan

/// \name Tracked allocations
/// Blocks of malloc(), recorded with the source position while memory is tracked; \a file null: not recorded.
/// Null if there is no memory.
/// @{
ZORVAN_EXPORT void *xmalloc(std::size_t size, const char *file, int line);
/// Filled with zeros. One size, no element count.
ZORVAN_EXPORT void *xcalloc(std::size_t size, const char *file, int line);
/// A new block with as much of the old one's content as fits; the old one is freed. \a old null: a plain
/// allocation. Null result: no memory, and the old block stays.
ZORVAN_EXPORT void *xrealloc(void *old, std::size_t size, const char *file, int line);
/// Frees a block, tracked or not; null does nothing. \a file and \a line are not used.
ZORVAN_EXPORT void xfree(void *block, const char *file, int line);
/// @}

/// \name Method timing
/// @{

/// The id of a method for startMethod() and endMethod(): its line + 65,536 times the number of its file, in
/// the order of their first use; files are told apart by the address of their name. Negative while methods
/// are not measured, and for the file "<disabled>".
ZORVAN_EXPORT int make_id(const char *file, int line);
/// Hands the texts and tables of the analysis tools to \a handler, null: to nobody. Returns when calls of the
/// old handler in other threads have ended: it may be deleted then. Not so from within a handler, where the
/// call returns at once. Not to be called with a lock held that a handler may want, such as in an output
/// receiver while a handler prints.
ZORVAN_EXPORT void installanalysisMessageHandler(Zorvan::IAnalysisOutputInterface *handler);
/// @}

namespace Zorvan {

/// Measures a scope: calls and processor cycles, without those of instrumented methods called in it.
///
/// Does nothing if methods were not measured when it was made. \a file and \a methodName are told apart by
/// their addresses: use literals.
class ZORVAN_EXPORT methodTracker
{
public:
    methodTracker(const char *file, int line, const char *methodName)
        : m_id(detail::timeTracking.load(std::memory_order_relaxed) == 1 ? make_id(file, line) : -1)
    {
        if (m_id >= 0)
            start(file, line, methodName);
    }
    /// A copy ends the same method once more, which is reported as wrong pairing: track by value, in place.
    methodTracker(const methodTracker &) = default;
    methodTracker &operator=(const methodTracker &) = default;
    virtual ~methodTracker()
    {
        if (m_id >= 0)
            end();
    }

private:
    void start(const char *file, int line, const char *methodName) const;
    void end() const;

    int m_id;
};

} // namespace Zorvan

using Zorvan::methodTracker; // found beside the functions that it calls
