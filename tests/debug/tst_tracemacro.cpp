#include "lowlevelfunctions/tracefile.h"

#include <zorvan/debug.h>

#include <gtest/gtest.h>

using namespace Zorvan::test;

TEST(TraceMacro, NotesItsArgumentsAndItsPlace)
{
    ZORVAN_TRACE("all passes done");
    ZORVAN_TRACE("pass %d begins%s", 0, "");
    ZORVAN_TRACE("%d", 0); // not a null list of arguments
    const std::string text = textOf(Zorvan::traceHistory());
    for (const char *const wanted :
         {"all passes done", "pass 0 begins", " - 0  ", "tst_tracemacro.cpp,line 12)"})
        EXPECT_NE(text.find(wanted), std::string::npos) << wanted << '\n' << text;
}
