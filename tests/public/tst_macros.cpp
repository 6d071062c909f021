// The macros: what they evaluate, how often they print, where they can stand.

#include "printonce.h"
#include "support/crew.h"
#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <climits>
#include <gtest/gtest.h>
#include <map>

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

constexpr moduleId kernel = 2;
constexpr int warning = 2;
constexpr int info = 3;

int s_evaluated = 0;

QString costly()
{
    ++s_evaluated;
    return QStringLiteral("costly");
}

/// Whether the macro built its text.
bool isBuilt(moduleId module, int level, int cls = 0)
{
    s_evaluated = 0;
    ZORVAN_PRINT(module, cls, level, costly());
    return s_evaluated == 1;
}

int d_evaluatedModulus()
{
    return 2;
}

template <typename Text>
void printFromTemplate(const Text &text)
{
    ZORVAN_PRINT_ONCE(kernel, 0, warning, text);
}

class Macros : public ::testing::Test
{
protected:
    void SetUp() override
    {
        Debug::initDebug();
        Debug::setClippingLevel(kernel, warning);
        Debug::isActive(kernel, 0, 0);
        host.takeLines();
        s_evaluated = 0;
    }
    void TearDown() override { Debug::exitDebug(); }
    static std::string log() { return readFile(libraryFile("GYX-syslog-0.log")); }

    MapHost host;
};

TEST_F(Macros, BuildTheTextOnlyForAMessageThatIsPrinted)
{
    int asked = 0;
    const auto level = [&asked](int value) {
        ++asked;
        return value;
    };
    ZORVAN_PRINT(kernel, 0, level(info), costly());
    EXPECT_EQ(s_evaluated, 0);
    ZORVAN_PRINT(kernel, 0, level(warning), costly());
    EXPECT_EQ(s_evaluated, 1);
    EXPECT_EQ(asked, 2) << "every argument once";
    EXPECT_EQ(host.linesWith("costly"), 1);
    Debug::disableMessageClassType(kernel, 1);
    EXPECT_FALSE(isBuilt(kernel, warning, 1)) << "refused for its class";
}

TEST_F(Macros, StandWhereverAStatementCan)
{
    if (s_evaluated != 0)
        ZORVAN_PRINT(kernel, 0, warning, "then");
    else
        ZORVAN_PRINT(kernel, 0, warning, QLatin1String("else"));
    if (s_evaluated != 0)
        ZORVAN_ASSERT(s_evaluated == 0, "then");
    else
        ZORVAN_PRINT_EVERY(1, kernel, 0, warning, "else");
    EXPECT_EQ(host.linesWith("else"), 2);
    const auto nested = [](const char *inner) {
        ZORVAN_PRINT(kernel, 0, warning, QString::fromLatin1(inner));
        return "outer";
    };
    ZORVAN_PRINT(kernel, 0, warning, [&] {
        ZORVAN_PRINT(kernel, 0, warning, "middle");
        return nested("inner");
    }());
    EXPECT_EQ(host.takeLines().size(), 3U);
    printFromTemplate("text");
    printFromTemplate(QStringLiteral("text"));
    printFromTemplate(QStringLiteral("text"));
    printFromTemplate(QByteArray("text"));
    EXPECT_EQ(host.linesWith("text"), 3) << "each instance is a place of its own";
    printOnce();
    printOnceFromAnotherFile();
    EXPECT_EQ(host.linesWith("once from a header"), 1);
}

TEST_F(Macros, LimitOnlyMessagesThatAreActive)
{
    for (int round = 0; round < 20; ++round) {
        Debug::setClippingLevel(kernel, round < 10 ? 0 : warning);
        ZORVAN_PRINT_ONCE(kernel, 0, warning, QLatin1String("once ") + QString::number(round));
        ZORVAN_PRINT_EVERY(4, kernel, 0, warning, QLatin1String("every ") + QString::number(round));
        ZORVAN_PRINT_AT_MOST(0, kernel, 0, warning, costly());
    }
    std::string texts;
    for (const std::string &line : host.takeLines())
        texts += line.substr(line.find(">: ") + 3) + ' ';
    EXPECT_EQ(texts, "once 10 every 10 every 14 every 18 ");
    EXPECT_EQ(s_evaluated, 0);
}

TEST_F(Macros, LimitThePlaceNotTheThread)
{
    Crew(4, [](int) {
        for (int round = 0; round < 50; ++round) {
            ZORVAN_PRINT_ONCE(kernel, 0, warning, "once");
            ZORVAN_PRINT_EVERY(10, kernel, 0, warning, "every");
        }
    }).join();
    std::map<std::string, int> counts;
    for (const std::string &line : host.takeLines())
        ++counts[line.substr(line.find(">: ") + 3)];
    EXPECT_EQ(counts, (std::map<std::string, int>{{"once", 1}, {"every", 20}}));
}

TEST(Limit, LetsSoManyThroughInASecondFromTheFirst)
{
    detail::AtMost limit;
    const auto taken = [&limit](std::uint64_t now, int tries) {
        int count = 0;
        for (int i = 0; i < tries; ++i)
            count += limit.takes(3, now) ? 1 : 0;
        return count;
    };
    EXPECT_EQ(taken(0, 2), 2);
    EXPECT_EQ(taken(999, 5), 1);
    EXPECT_EQ(taken(1000, 5), 3) << "the next second";
    EXPECT_EQ(taken(500, 5), 0) << "a thread that is behind";
    EXPECT_EQ(taken(1999, 5), 0);
    EXPECT_EQ(taken(1'000'000'000'000, 5), 3) << "after 30 years";
    EXPECT_EQ(taken(1'000'000'000'999, 5), 0);
}

TEST_F(Macros, AskTheLibraryWheneverItMightAnswerOtherwise)
{
    const auto isRight = [](moduleId module) {
        for (const int level : {-1, 0, 1, warning, info}) {
            if (isBuilt(module, level) != Debug::isActive(module, level, 0))
                return false;
        }
        return true;
    };
    constexpr moduleId fresh = 5;
    EXPECT_FALSE(isBuilt(fresh, info));
    EXPECT_EQ(Debug::getModuleName(fresh), QLatin1String("KLV-OrgLayer")) << "the first question counts";
    for (const int level : {-1, 0, warning, 4, INT_MIN}) {
        Debug::setClippingLevel(kernel, level);
        EXPECT_TRUE(isRight(kernel)) << level;
    }
    moduleId last = 0;
    while (last < 70)
        last = Debug::createModule("many", "many");
    for (const moduleId id : {0, 26, 62, 63, 64, 65, 70, 71, -1, INT_MAX, INT_MIN})
        EXPECT_TRUE(isRight(id)) << id;
    Debug::enableSettings(QStringLiteral("disableOutput"));
    EXPECT_TRUE(isRight(kernel));
    Debug::setClippingLevel(kernel, warning); // and on again
    EXPECT_FALSE(isBuilt(kernel, info));
    Debug::createModule("DebugServerClient", ""); // resets the table
    EXPECT_TRUE(isRight(kernel));
    Debug::exitDebug();
    EXPECT_TRUE(isBuilt(kernel, info)) << "to the system log";
    Debug::initDebug();
    EXPECT_TRUE(isRight(kernel));
}

TEST(MacrosInSmokeTest, LetOnlyLevelZeroThrough)
{
    EXPECT_TRUE(isBuilt(kernel, info)) << "before the library starts";
    MapHost host;
    host.store("doingSmokeTest", 1);
    Debug::initDebug();
    Debug::setClippingLevel(kernel, warning);
    EXPECT_TRUE(isBuilt(kernel, 0));
    EXPECT_FALSE(isBuilt(kernel, 1));
    Debug::setClippingLevel(kernel, -1);
    EXPECT_TRUE(isBuilt(kernel, 0)) << "whatever the level of the module";
    Debug::exitDebug();
}

TEST_F(Macros, AssertWithATextThatTheLogShowsAsItIs)
{
    const int left = 7;
    ZORVAN_ASSERT(left % 2 == 1, costly());
    EXPECT_EQ(s_evaluated, 0);
    const int line = __LINE__ + 1;
    ZORVAN_ASSERT(left % d_evaluatedModulus() == 0, "odd");
    EXPECT_NE(log().find("left % d_evaluatedModulus() == 0"), std::string::npos) << log();
    EXPECT_NE(log().find("tst_macros.cpp(" + std::to_string(line) + ')'), std::string::npos);
}

#undef ZORVAN_HIGHEST_LEVEL
#define ZORVAN_HIGHEST_LEVEL 1

TEST_F(Macros, LeaveOutMessagesAboveTheHighestLevel)
{
    ZORVAN_PRINT(kernel, 0, warning, costly());
    ZORVAN_PRINT_ONCE(kernel, 0, warning, costly());
    ZORVAN_PRINT_AT_MOST(9, kernel, 0, warning, costly());
    EXPECT_EQ(s_evaluated, 0);
    EXPECT_TRUE(isBuilt(kernel, warning)) << "compiled with all levels";
    ZORVAN_PRINT(kernel, 0, 1, costly());
    EXPECT_EQ(s_evaluated, 2);
}

} // namespace
