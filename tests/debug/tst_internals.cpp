// Messages of Qt, of kinds that a test cannot raise; which output filters cost too much.

#include "debug/qtmessages.h"
#include "host/patternlimits.h"
#include "support/maphost.h"

#include <gtest/gtest.h>

using namespace Zorvan;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

TEST(Internals, QtMessagesHaveAPrefixAndALevelOfTheirType)
{
    MapHost host;
    host.store("DebugServerDebugLevel", "error");
    Debug::initDebug();
    host.takeLines();
    for (const QtMsgType type : {QtDebugMsg, QtWarningMsg, QtCriticalMsg, QtFatalMsg, QtInfoMsg})
        printQtMessage(type, QStringLiteral("text"));
    const std::string head = "<debug message>, ";
    EXPECT_EQ(host.takeLines(),
              (Lines{
                  head + "<       Error>: ++++ QDebug: text",
                  head + "<       Error>: ++++ QWarning: text",
                  head + "<+ CRITICAL +>: ++++ QCritical: text",
                  head + "<+ CRITICAL +>: ++++ QFatal: text",
              }));
    Debug::enableLevel(0, QStringLiteral("info"));
    host.takeLines();
    printQtMessage(QtInfoMsg, QStringLiteral("text"));
    printQtMessage(static_cast<QtMsgType>(7), QStringLiteral("text")); // a kind of a later Qt
    EXPECT_EQ(host.takeLines(),
              (Lines{
                  head + "<        Info>: ++++ QInfo: text",
                  head + "<        Info>: ++++ <unknown Qt Message Category>: text",
              }));
    Debug::exitDebug();
}

TEST(Internals, PatternsMayBeLongButNotMultiply)
{
    const auto repeated = [](const char *piece, int count) {
        return QString::fromLatin1(piece).repeated(count);
    };
    for (const QString &pattern :
         {QString(), repeated("x", 1000), repeated(".*", 20), repeated("(", 50) + repeated(")", 50),
          QStringLiteral("^.*(Error|Warning>).*[0-9]{4}.[*{99999}]\\{99999}(a{90}){9}$"), repeated(")", 100),
          QStringLiteral("[x"), QStringLiteral("x\\"), QStringLiteral("a{0,90}x"),
          QStringLiteral("((?!x).){2,13}"), QStringLiteral("[](]{9}[^]]*\\({9}[\\](]{9}"),
          QStringLiteral("(.)(.)(.)\\1\\2\\3")})
        EXPECT_TRUE(isAffordable(pattern)) << pattern.left(40).toStdString();
    for (const QString &pattern :
         {repeated("x", 1001), repeated(".*", 25), repeated(".?", 51), repeated("(x)\\1", 17),
          repeated("(", 51), QStringLiteral("(a{100}){100}"), QStringLiteral("((a{0,20}){0,20})x"),
          QStringLiteral("((a{0,9}){,12})x"), QStringLiteral("(.*){100}"),
          // empty alternatives, and any of many behind any of many
          QStringLiteral("(.|){124}z"), QStringLiteral("(") + repeated(".|", 24) + QStringLiteral("z)*"),
          // a copy of all that was captured for each way, and a class compared on each
          QStringLiteral("()").repeated(400) + QStringLiteral("(.|.|.|.|.|.|.|.|.|.|.|.)*z"),
          QStringLiteral("[") + QStringLiteral("\\W").repeated(7000) + QStringLiteral("a]*z"),
          // what looks ahead does it at each step, and QRegExp copies it
          QStringLiteral("(?=.*(?=.*x))"), QStringLiteral("((?=aaaaaaaaaa)(.|.|.|.|.|.))*z"),
          repeated("(?=x)", 14), QStringLiteral("(?=a){14}"),
          QStringLiteral(".+(?=.*x)(") + repeated("b|", 100) + QStringLiteral(")"),
          QStringLiteral("((?!a)(?!b)){2,7}"), QStringLiteral("((?=a)[])]){14}"),
          // QRegExp multiplies alternatives of anchors, of those in look-aheads, too
          repeated("(?=^|$||^|$||^|$||^|$||^|$)", 13),
          QStringLiteral(".+(?:^|$") + repeated("|", 18) + QStringLiteral(")(?=.*x)z"),
          QStringLiteral("($|^|\\b|a*){15}"), QStringLiteral("x") + repeated("(^|$)a?", 5),
          // crashes QRegExp, which takes it for \0
          QStringLiteral("^\\65536"),
          // read as QRegExp does: brackets within brackets, the rest of what is invalid
          repeated("([])]x", 4) + repeated("){9}", 4), repeated("(x[\\)\\]]", 4) + repeated("){9}", 4),
          QStringLiteral("a{((a{100}){100}}"), QStringLiteral("((((x|{)|{)|{)|{)") + repeated("){9}", 4),
          QStringLiteral("(x{") + repeated("0", 100) + QStringLiteral("1}){900}"),
          repeated("(xxx", 3) + repeated("(?()y){20}", 3), repeated("((^{10}){10}){11}", 1),
          QStringLiteral("(") + repeated("|", 99) + QStringLiteral("){11}")})
        EXPECT_FALSE(isAffordable(pattern)) << pattern.left(40).toStdString();
}

TEST(Internals, PatternsOfEverydayUseAreTakenFromAnybody)
{
    for (const char *pattern :
         {"(error|warning|critical)+(:|(,|;)*)", "^.*(Error|Warning).*[0-9]{4}.*$",
          "colou?r(?=.*x)[0-9]{1,3}", "(\\w|\\d|\\s|[.,:;])*Timeout", "((?!debug).)*",
          "^(?!.*(debug|trace|verbose)).*$", "\\b(Motor|Valve|Pump|Sensor)\\b.*(fail|error|timeout|refused)",
          "\\[[^]]*\\] .*: \\d{1,3}\\.\\d{1,3}\\.\\d{1,3}\\.\\d{1,3}(:\\d{1,5})?", ".*a.*b.*c.*d.*",
          "([A-Za-z_][A-Za-z0-9_]*\\.)*[A-Za-z_]+Exception", "^.{10,60}state (on|off)",
          "(\\S+ ){5,20}failed"})
        EXPECT_TRUE(isCheap(QLatin1String(pattern))) << pattern;
    EXPECT_FALSE(isCheap(QStringLiteral(".*").repeated(20)));
}

/// The last one would leave memory of QRegExp behind, which AddressSanitizer reports at the end.
TEST(Internals, OnlyValidPatternsAreExpressions)
{
    const QRegExp valid = expressionOf(QStringLiteral("b(?=x)(?!xa)."));
    EXPECT_TRUE(valid.isValid());
    EXPECT_EQ(valid.indexIn(QStringLiteral("b bxa bxb")), 6);
    for (const char *pattern : {"(?=x", "(?!x))", "((?=a)(?=b)(?=c)(?={2}x){9}"}) {
        ASSERT_TRUE(isAffordable(QLatin1String(pattern))) << pattern;
        const QRegExp invalid = expressionOf(QLatin1String(pattern));
        EXPECT_FALSE(invalid.isValid()) << pattern;
        EXPECT_NE(invalid.errorString(), QRegExp().errorString()) << pattern;
    }
}

} // namespace
