// What a line looks like, to the byte: header pieces, splitting of messages; and the filters on it.

#include "support/maphost.h"

#include <zorvan/debug.h>

#include <QTime>

#include <cmath>
#include <gtest/gtest.h>
#include <regex>

using Zorvan::Debug;
using Zorvan::test::MapHost;
using Lines = std::vector<std::string>;

namespace {

constexpr int kernel = 2;

class NamedThread : public Zorvan::IThraedInterface
{
public:
    explicit NamedThread(const char *name)
        : m_name(name)
    {
        Debug::setThreadCallbackHandler(this);
    }
    ~NamedThread() override { Debug::setThreadCallbackHandler(nullptr); }
    const char *threadName() override { return m_name; }

private:
    const char *m_name;
};

class LineFormat : public ::testing::Test
{
protected:
    void SetUp() override
    {
        host.store("KernelDebugLevel", "full");
        Debug::initDebug();
    }
    void TearDown() override { Debug::exitDebug(); }

    Lines print(const char *text, int level = 2, int cls = 0, int module = kernel)
    {
        host.takeLines();
        Debug::println(module, cls, QString::fromLatin1(text), level);
        return host.takeLines();
    }
    static void showOnlyText()
    {
        Debug::setDisplayFlags(-10);
        // No command hides class and level: a module without descriptions has none to show.
        Debug::setMessageClassDescriptions(kernel, 0, static_cast<const char **>(nullptr));
        const char *blank[] = {"", "", "", "", ""};
        Debug::setMessageLevelDescriptions(kernel, 5, blank);
        Debug::enableMessageClassType(kernel, 0);
        Debug::setClippingLevel(kernel, 4);
    }

    MapHost host;
};

TEST_F(LineFormat, PiecesWithoutDescriptionAreEmpty)
{
    EXPECT_EQ(print("all", 0, -1), Lines{"<all classes><+ CRITICAL +>: all"});
    EXPECT_EQ(print("class", 0, 2), Lines{"<+ CRITICAL +>: class"});
    EXPECT_EQ(print("class", 0, -2), Lines{"<+ CRITICAL +>: class"});
    Debug::enableMessageClassType(kernel, 0);
    EXPECT_EQ(print("level", -1), Lines{"<debug message>, level"});
    const Zorvan::moduleId bare = Debug::createModule("Bare", "Bare");
    EXPECT_EQ(print("bare", 0, 0, bare), Lines{"bare"});
}

TEST_F(LineFormat, IdsNotHandedOutYetSaySo)
{
    Debug::createModule("Grown", "Grown"); // room for 54 now, 28 handed out
    EXPECT_EQ(print("text", 0, 0, 40), Lines{"text"});
    Debug::setDisplayFlags(-9);
    EXPECT_EQ(print("text", 0, 0, 40), Lines{"<given module ID out of range>text"});
    EXPECT_EQ(print("text", 0, 0, 54), Lines{});
    EXPECT_EQ(print("text", 0, 0, -1), Lines{});
}

TEST_F(LineFormat, MessagesAreSplitAtLineFeeds)
{
    showOnlyText();
    EXPECT_EQ(print("a\n\nb\n"), (Lines{"a", "", "b"}));
    EXPECT_EQ(print("\n"), Lines{""});
    EXPECT_EQ(print(""), Lines{""});
    EXPECT_EQ(print("a\r\nb"), (Lines{"a\r", "b"}));
    EXPECT_EQ(print("\n\na"), (Lines{"", "", "a"}));
    Debug::println(kernel, 0, QString::fromUtf8("\xc3\xa4 \xe2\x82\xac \xf0\x9f\x98\x80 %s%n%"), 2);
    EXPECT_EQ(host.takeLines(), Lines{"\xe4 ? ?? %s%n%"}) << "no character beyond Latin-1";
}

TEST_F(LineFormat, TimeStampFollowsTheCounter)
{
    Debug::setDisplayFlags(-5);
    const std::regex stamp(
        R"((\d\d):(\d\d):(\d\d)\.(\d\d\d)\.(\d\d\d): <debug message>, <     Warning>: text)");
    const auto micros = [&](const std::string &line) {
        std::smatch parts;
        EXPECT_TRUE(std::regex_match(line, parts, stamp)) << line;
        const auto number = [&](int part) { return std::stoll(parts[part].str()); };
        return (((number(1) * 60 + number(2)) * 60 + number(3)) * 1000 + number(4)) * 1000 + number(5);
    };
    constexpr long long day = 86400LL * 1000000;
    const long long start = micros(print("text").at(0));
    const long long now = QTime::currentTime().msecsSinceStartOfDay() * 1000LL;
    EXPECT_LT((now - start + day) % day, 60LL * 1000000) << "does not begin with the local time";
    host.counter = 7125000; // at 1 MHz
    EXPECT_EQ((micros(print("text").at(0)) - start + day) % day, 7125000);
    host.counter = 999999;
    EXPECT_EQ((micros(print("text").at(0)) - start + day) % day, 999999);
    for (const double broken : {0.0, -1.0, std::nan("")}) {
        host.frequency = broken;
        EXPECT_EQ(micros(print("text").at(0)), start);
    }
    host.frequency = 1e-300; // the largest times a counter can claim
    micros(print("text").at(0));
    host.frequency = 1e6;
    host.counter = static_cast<quint64>(-5000000); // stepped back behind the start
    EXPECT_EQ((micros(print("text").at(0)) - start + day) % day, day - 5000000);
}

TEST_F(LineFormat, ThreadsAreNamedByTheHostOrByTheirId)
{
    Debug::setDisplayFlags(-7);
    EXPECT_TRUE(std::regex_match(print("text").at(0), std::regex("\\(thread 0x[0-9a-f]+\\) <debug.*")));
    {
        const NamedThread worker("worker");
        EXPECT_EQ(print("text"), Lines{"(         worker thread) <debug message>, <     Warning>: text"});
    }
    const std::string longName(300, 'n');
    {
        const NamedThread longer(longName.c_str());
        EXPECT_EQ(print("text"), Lines{"(" + longName + " thread) <debug message>, <     Warning>: text"});
    }
    const NamedThread nameless(nullptr);
    EXPECT_EQ(print("text"),
              Lines{"(" + std::string(15, ' ') + " thread) <debug message>, <     Warning>: text"});
}

TEST_F(LineFormat, OutputFilterIgnoresMatchesAtTheStart)
{
    struct Row
    {
        const char *pattern;
        const char *text;
        bool passes;
    };
    showOnlyText();
    for (const Row &row : {
             Row{"abc", "abc", false},
             Row{"abc", "abc abc", false},
             Row{"abc", "x abc", true},
             Row{"ABC", "x abc", false},
             Row{"^x", "xx", false},
             Row{"x*", "abx", false},
             Row{"(", "a(b", false},
             Row{"", "anything", true},
         }) {
        Debug::setOutputFilter(QString::fromLatin1(row.pattern));
        EXPECT_EQ(print(row.text).size(), row.passes ? 1U : 0U) << row.pattern << " on " << row.text;
        EXPECT_EQ(Debug::getOutputFilter(), QString::fromLatin1(row.pattern));
    }
    Debug::setDisplayFlags(-9);
    for (const auto &[pattern, lines] : {std::pair("abc", 1U), {"KLV-Kernel", 1U}, {"<   KLV", 0U}}) {
        Debug::setOutputFilter(QString::fromLatin1(pattern));
        EXPECT_EQ(print("abc").size(), lines) << "the header counts";
    }
}

TEST_F(LineFormat, LevelFilterEntriesNeedModuleAndText)
{
    Debug::setLevelFilter(QStringLiteral("KLV-Kernel|timeout;KLV-Gui|paint"));
    EXPECT_EQ(Debug::getLevelFilter(), QStringLiteral("KLV-Kernel|timeout;KLV-Gui|paint"));
    EXPECT_EQ(print("a timeout").size(), 1U); // module names are hidden
    EXPECT_EQ(print("a paint").size(), 1U);
    EXPECT_EQ(print("a Timeout").size(), 0U);
    Debug::setDisplayFlags(-9);
    EXPECT_EQ(print("a timeout").size(), 1U);
    EXPECT_EQ(print("a paint").size(), 0U);
    Debug::setOutputFilter(QStringLiteral("slow")); // both filters must let a line through
    EXPECT_EQ(print("a timeout").size(), 0U);
    EXPECT_EQ(print("a slow timeout").size(), 1U);
    Debug::setOutputFilter(QString());
    Debug::setLevelFilter(QStringLiteral("nothing;")); // an empty entry occurs in every line
    EXPECT_EQ(print("text").size(), 1U);
    Debug::setLevelFilter(QStringLiteral("no bar"));
    EXPECT_EQ(print("text").size(), 0U);
    Debug::setLevelFilter(QString());
    EXPECT_EQ(print("text").size(), 1U);
}

TEST_F(LineFormat, FormattedLinesPassTheFiltersButNotTheSwitches)
{
    Debug::setClippingLevel(kernel, -1);
    host.takeLines();
    Debug::printFormattedString(kernel, 0, 3, QStringLiteral("ready made"));
    EXPECT_EQ(host.takeLines(), Lines{"ready made"});
    Debug::setOutputFilter(QStringLiteral("other"));
    Debug::printFormattedString(kernel, 0, 3, QStringLiteral("ready made"));
    EXPECT_EQ(host.takeLines(), Lines{});
    Debug::setOutputFilter(QString());
    Debug::printFormattedString(-7, 99, -3, QStringLiteral("unknown module"));
    EXPECT_EQ(host.takeLines(), Lines{"unknown module"});
}

} // namespace
