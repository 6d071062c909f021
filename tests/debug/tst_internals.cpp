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
         {QString(), repeated("x", 1000), repeated(".*", 16), repeated("(", 50) + repeated(")", 50),
          QStringLiteral("^.*(Error|Warning>).*[0-9]{4}.[*{99999}]\\{99999}(a{90}){9}$"), repeated(")", 100),
          QStringLiteral("[x"), QStringLiteral("x\\"), QStringLiteral("colou?r(?=.*x)[0-9]{1,3}"),
          QStringLiteral("a{0,90}"), QStringLiteral("((\\d+\\.)+|[a-z]*)*"), QStringLiteral("((?!x).){2,3}"),
          QStringLiteral("(error|warning|critical)+(:|(,|;)*)")})
        EXPECT_TRUE(isAffordable(pattern)) << pattern.left(40).toStdString();
    for (const QString &pattern : {repeated("x", 1001), repeated(".*", 17), repeated(".?", 51),
                                   repeated("(x)\\1", 17), repeated("(", 51), QStringLiteral("(a{100}){100}"),
                                   QStringLiteral("((a{0,20}){0,20})x"), QStringLiteral("((a{0,9}){,12})"),
                                   QStringLiteral("(.*){100}"), repeated("(", 17) + repeated("x*)", 17),
                                   QStringLiteral("(?=.*(?=.*x))"), QStringLiteral("(a{1,}){17,}"),
                                   repeated("(?=x", 5), repeated("(?=x)", 14), QStringLiteral("(?=a){14}"),
                                   QStringLiteral("((?!a)(?!b)){2,7}"), QStringLiteral("a{((a{100}){100}}")})
        EXPECT_FALSE(isAffordable(pattern)) << pattern.left(40).toStdString();
    EXPECT_TRUE(isCheap(repeated(".*", 4)));
    EXPECT_FALSE(isCheap(repeated(".*", 5)));
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
