// What remote clients send and get: records and their encoding, units, and the three commands.

#include "public/hookrecorder.h"
#include "support/guiapplication.h"
#include "support/remoteclient.h"

#include <gtest/gtest.h>

using Zorvan::Debug;
using namespace Zorvan::test;

namespace {

constexpr int kernel = 2;
using Calls = std::vector<std::string>;

QByteArray echoOf(const QByteArray &unit)
{
    return "<clientMessage>" + unit + "</clientMessage>\r\n";
}

QByteArray hookElement(const QByteArray &parameters)
{
    return "<hook key='test' parameters='" + parameters + "'/>";
}

class Protocol : public ::testing::Test
{
protected:
    Protocol()
    {
        Debug::initDebug();
        Debug::installHook("test", &hook, true);
        port = openRemoteAccess(host);
        EXPECT_TRUE(runOn());
        client.emplace(port);
        EXPECT_TRUE(client->waitForGreeting());
    }
    ~Protocol() override
    {
        client.reset();
        Debug::exitDebug();
    }
    static bool runOn()
    {
        return runUntil([rounds = 0]() mutable { return ++rounds > 20; });
    }
    /// Sends a unit and, to see its end, another one; returns the calls of the hook.
    Calls execute(const QByteArray &unit)
    {
        for (const QByteArray &each : {unit, QByteArray("<next/>\n")}) {
            client->send(each);
            EXPECT_EQ(client->takeUntil("</clientMessage>\r\n"), echoOf(each));
        }
        return hook.takeCalls();
    }

    MapHost host;
    HookRecorder hook;
    TestApplication<QCoreApplication> application;
    quint16 port = 0;
    std::optional<RemoteClient> client;
};

TEST_F(Protocol, SendsEachBatchAsOneRecord)
{
    Debug::println(kernel, 0, QStringLiteral("first\nsecond"), 0);
    Debug::println(kernel, 0, QStringLiteral("Gr\u00f6\u00dfe \u20ac \U0001f600"), 0);
    EXPECT_EQ(client->takeUntil("\r\n"),
              "<debug message>, <+ CRITICAL +>: first\n"
              "<debug message>, <+ CRITICAL +>: second\n"
              "<debug message>, <+ CRITICAL +>: Gr\366\337e ? ??\r\n");
}

TEST_F(Protocol, EchoesAUnitInLatin1ToEverybodyBeforeItIsExecutedOnce)
{
    RemoteClient other(port);
    ASSERT_TRUE(other.waitForGreeting());
    const QByteArray echo = echoOf("\r\n <hook key='test'\r\n parameters='\344 ? ?? ?!'/>\r\n");
    hook.onCall = [&](char *, char *) {
        other.socket().waitForReadyRead();
        EXPECT_EQ(other.take(), echo);
        Debug::println(kernel, 0, QStringLiteral("called"), 0);
    };
    client->send(
        "\r\n <hook key='test'\r\n"
        " parameters='\303\244 \342\202\254 \360\237\230\200 \344!'/>\r\n"); // UTF-8, but for the end
    const QByteArray line = "<debug message>, <+ CRITICAL +>: called\r\n";
    EXPECT_EQ(client->takeUntil(line), echo + line);
    EXPECT_EQ(other.takeUntil(line), line);
    EXPECT_EQ(hook.takeCalls(), Calls{"test=\344 ? ?? ?!"});
}

TEST_F(Protocol, WaitsForWholeLinesAndIgnoresBlankOnes)
{
    const QByteArray element = hookElement("x");
    for (const QByteArray &part :
         {QByteArray("\n"), QByteArray(" \t\r\n\r\n") + element.left(9), element.mid(9)}) {
        client->send(part);
        ASSERT_TRUE(runOn());
        EXPECT_EQ(client->take(), "");
        EXPECT_EQ(hook.takeCalls(), Calls{});
    }
    client->send("\n  ");
    EXPECT_EQ(client->takeUntil("\r\n"), echoOf(element + '\n'));
    ASSERT_TRUE(runOn());
    EXPECT_EQ(hook.takeCalls(), Calls{"test=x"});
}

TEST_F(Protocol, ExecutesTheHooksOfAUnitUpToItsFirstError)
{
    const QByteArray one = hookElement("1");
    const QByteArray two = hookElement("2");
    const std::vector<std::pair<QByteArray, Calls>> rows = {
        {one + '\n' + two, {"test=1"}}, // one document has one root
        {"<?xml version='1.0'?><!-- c --><a>text<b><c>" + one + "</c></b>\n" + two + "</a>",
         {"test=1", "test=2"}},
        {"<hook key='test'><config><filter>" + two + "</filter></config></hook>", {"test=", "test=2"}},
        {"<a>" + one + "<b></a>" + two, {"test=1"}},
        {"<a>" + one + "<b key=x/>" + two + "</a>", {"test=1"}},
        {"junk " + one, {}},
        {"\x01\x02<<>&&", {}},
        {two, {"test=2"}},
        {"<hook key='test'/>", {"test="}},
        {"<hook other='1' parameters=' &lt;&amp;&#228;&#8364;&quot; ' key='test'></hook>",
         {"test= <&\xe4?\" "}},
        {"<z:hook xmlns:z='urn:z' key='test'/>", {"test="}},
        {"<hook parameters='x'/>", {}},
        {"<hook key='Test'/>", {}},
        {"<Hook key='test'/>", {}},
        {"<hook Key='test'/>", {}},
    };
    for (const auto &[unit, calls] : rows)
        EXPECT_EQ(execute(unit + '\n'), calls) << unit.toStdString();
}

class Filter : public Protocol
{
protected:
    Filter()
    {
        for (const int module : {1, 2, 3})
            Debug::isActive(module, 0, 0);
        Debug::setModuleDescription(1, "KLV-Kernel2", "Startup");
    }
    /// The modules that a command changed, with their new level and classes.
    std::string changedBy(const QByteArray &attributes)
    {
        for (int module = 0; module < 5; ++module) {
            Debug::setClippingLevel(module, 0);
            Debug::enableClasses(module, QStringLiteral("all"));
        }
        execute("<filter " + attributes + "/>\n");
        std::string changed;
        for (int module = 0; module < 5; ++module) {
            const std::string state = std::to_string(Debug::getClippingLevel(module)) + ' '
                + Debug::getEnabledMessageClasses(module).toStdString();
            if (state != "0 all")
                changed += std::to_string(module) + ": " + state;
        }
        return changed;
    }
};

TEST_F(Filter, FindsTheFirstModuleWhoseNameContainsAText)
{
    EXPECT_EQ(changedBy("module='gUI' level='error'"), "3: 1 all");
    EXPECT_EQ(changedBy("module='KLV-Kernel' level='error'"), "1: 1 all") << "the exact name comes later";
    EXPECT_EQ(changedBy("module='  klv-kernel&gt; ' level='error'"), "2: 1 all") << "as in the line header";
    EXPECT_EQ(changedBy("module='' level='error'"), "0: 1 all");
    for (const char *const none : {"module='Database'", "module='Sonata'", "Module='gui'", ""})
        EXPECT_EQ(changedBy(QByteArray(none) + " level='error' classes='none'"), "") << none;
}

TEST_F(Filter, SetsLevelsAndClassesByName)
{
    const std::pair<const char *, const char *> rows[] = {
        {"level='Release'", "3: -1 all"},
        {"level='FULL' classes='NONE'", "3: 4 none"},
        {"level='warn' classes='time'", "3: 2 time meas"},
        {"level='' classes=''", "3: 4 none"},
        {"level='sonata'", ""},
        {"classes='sonata'", "3: 0 none"},
        // as the greeting lists them
        {"level='Error:'", "3: 1 all"},
        {"level='Time Meas:' classes='none,all'", "3: 4 none"},
        {"level='release,full'", "3: -1 all"},
    };
    for (const auto &[attributes, state] : rows)
        EXPECT_EQ(changedBy(QByteArray("module='Gui' ") + attributes), state) << attributes;
}

Calls filters()
{
    return {Debug::getLevelFilter().toStdString(), Debug::getOutputFilter().toStdString()};
}

TEST_F(Protocol, UnescapesFiltersOnceMore)
{
    const std::pair<const char *, const char *> rows[] = {
        {"it &amp;lt;b&amp;gt; &lt;i&gt;", "it <b> <i>"},
        {"a&amp;b &amp;amp; &amp;apos;", "a&b & &apos;"},
        {"&amp;amp;lt; &amp;amp;gt;", "&lt; &gt;"}, // the ampersand comes last
        {"&amp;quout; &amp;amp;quout; &amp;quot; &quot;", "\" \" &quot; \""}, // but for the quote
        {"&amp;amp;amp;lt; &amp;LT;", "&amp;lt; &LT;"},
    };
    for (const auto &[sent, filter] : rows) {
        const QByteArray value = QByteArray("='") + sent + "' ";
        execute("<config outputfilter" + value + "levelsfilter" + value + "/>\n");
        EXPECT_EQ(filters(), (Calls{filter, filter})) << sent;
    }
}

TEST_F(Protocol, ChangesOnlyTheConfigurationItNames)
{
    execute("<config levelsfilter='KLV|x' outputfilter='y+'/>\n");
    execute("<config enabledsettings='displayTimeStamp;displayModuleName'/>\n");
    execute("<config outputfilter='(.|){99}x'/>\n"); // costs too much
    EXPECT_EQ(filters(), (Calls{"KLV|x", "y+"}));
    EXPECT_EQ(Debug::getEnabledSettings(), QStringLiteral("displayTimeStamp,displayModuleName,"));
    execute("<config settings='' levelsFilter='' outputfilter=''/>\n");
    EXPECT_EQ(filters(), (Calls{"KLV|x", ""}));
    EXPECT_EQ(Debug::getEnabledSettings(), QStringLiteral("displayTimeStamp,displayModuleName,"));
    execute("<config enabledsettings=''/>\n");
    EXPECT_EQ(Debug::getEnabledSettings(), QString());
}

TEST_F(Protocol, MakesDefaultsUnlessThereIsAnOutputFilter)
{
    execute("<config outputfilter='' makedefault='yes'/>\n");
    EXPECT_EQ(host.written(), Calls{});
    execute("<config makedefault='' levelsfilter='KLV|x'/>\n");
    EXPECT_EQ(host.stored("DebugServerLevelsFilter"), QStringLiteral("KLV|x"));
}

TEST_F(Protocol, AppliesAttributesInItsOwnOrder)
{
    host.takeLines();
    client->send("<all><filter classes='all' level='info' module='Server'/>"
                 "<config outputfilter='none' levelsfilter='none' enabledsettings=''/></all>\n");
    ASSERT_TRUE(runUntil([] { return Debug::getOutputFilter() == QStringLiteral("none"); }));
    const std::vector<std::string> lines = host.takeLines();
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines.front().find("new message class mask"), std::string::npos) << "a notice of level info";
    EXPECT_NE(lines.back().find("displaying message level"), std::string::npos) << "the filters stop all";
}

} // namespace
