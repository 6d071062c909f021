#pragma once

#include "platform/threadlocal.h"

namespace Zorvan::analysis {

namespace detail {
// Defined in analysiscontrol.cpp.
extern ZORVAN_THREAD_WORD bool s_isInside;
} // namespace detail

/// Marks the calling thread as being inside the analyzer, for a scope. What it allocates there is not
/// recorded: a host that sends its operator new through the analyzer would otherwise wait for itself.
class InsideAnalyzer
{
public:
    InsideAnalyzer()
        : m_wasInside(detail::s_isInside)
    {
        detail::s_isInside = true;
    }
    ~InsideAnalyzer() { detail::s_isInside = m_wasInside; }
    InsideAnalyzer(const InsideAnalyzer &) = delete;
    InsideAnalyzer &operator=(const InsideAnalyzer &) = delete;

    /// Whether the calling thread is inside.
    [[nodiscard]] static bool isActive() { return detail::s_isInside; }

private:
    const bool m_wasInside;
};

} // namespace Zorvan::analysis
