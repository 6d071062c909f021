#pragma once

#include "lowlevelfunctions/tracehistory.h"
#include "platform/support.h"

#include <gtest/gtest.h>

namespace Zorvan::test {

inline const std::string dumpHeading =
    "\nnow trying to dump history of last execution trace points (this may not work)...\n";

inline void note(TraceHistory &history, const char *file, int line, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    history.note(file, line, format, &arguments);
    va_end(arguments);
}

/// What a history holds, as a dump shows it.
inline std::string textOf(TraceHistory &history)
{
    const platform::tests::TemporaryFolder folder;
    history.dump((folder / "log").c_str());
    const std::string content = platform::tests::contentOf(folder / "log");
    EXPECT_EQ(content.substr(0, dumpHeading.size()), dumpHeading);
    return content.substr(std::min(content.size(), dumpHeading.size()));
}

} // namespace Zorvan::test
