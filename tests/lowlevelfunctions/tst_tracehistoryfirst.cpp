#include <zorvan/debug.h>

#include <gtest/gtest.h>
#include <malloc.h>

namespace {

TEST(TraceHistoryOfAProcess, IsThereBeforeTheFirstLine)
{
    const auto before = mallinfo2().uordblks;
    Zorvan::logHistory("a.cpp", 1, "point %d", 1);
    EXPECT_EQ(mallinfo2().uordblks, before);
}

} // namespace
