#pragma once

#include "leakanalyzer/analysiscontrol.h"

namespace Zorvan::analysis {

/// The analyzer's own copy of a text of the caller's, such as the name of a source file: one per address,
/// never freed, since the caller's module may be unloaded. Null stays null; null also when memory is short.
[[nodiscard]] const char *nameCopy(const char *text) ZORVAN_REQUIRES(analyzerLock());

/// Whether the part of \a name behind its last '/', '\' or '=' occurs in \a filter. A null or empty filter
/// lets everything pass.
[[nodiscard]] bool passesFilter(const char *name, const char *filter);

} // namespace Zorvan::analysis
