#include "lowlevelfunctions/argumentlessformat.h"

#include <gtest/gtest.h>

namespace Zorvan::test {
namespace {

TEST(ArgumentlessFormat, conversionsPrintZeroOrNull)
{
    const std::pair<const char *, const char *> rows[] = {
        {"", ""},
        {"plain \xe4\xff\n", "plain \xe4\xff\n"},
        {"%%|%%%%d", "%|%%d"},
        {"50%done", "500one"},
        {"%d %i %u %x %X %o", "0 0 0 0 0 0"},
        {"%hhd %hd %ld %lld %jd %zu %td", "0 0 0 0 0 0 0"},
        {"%f %.2f %lf %Lf %e %g", "0.000000 0.00 0.000000 0.000000 0.000000e+00 0"},
        {"%5d|%-5d|%05d|%+d|% d|%#x", "    0|0    |00000|+0| 0|0"},
        {"%s|%8s|%-8s|%ls", "(null)|  (null)|(null)  |(null)"},
        {"%*d|%-*d|%.*f", "0|0|0"},
        {"%5$d|%1$s|%2$*1$d", "0|(null)|0"},
        {"a%nb%hhn%lln", "ab"},
    };
    for (const auto &[format, expected] : rows)
        EXPECT_EQ(formatWithoutArguments(format), expected) << format;
    EXPECT_EQ(formatWithoutArguments(nullptr), "");
    for (const char *broken : {"%", "100%", "%5", "%-", "%.", "%l", "%5$", "%y", "%\xff"})
        EXPECT_EQ(formatWithoutArguments(broken), broken);
    EXPECT_EQ(formatWithoutArguments("%99999999999999999999d").size(), 4095U);
    EXPECT_EQ(formatWithoutArguments("%2147483648s").size(), 4095U);
}

} // namespace
} // namespace Zorvan::test
