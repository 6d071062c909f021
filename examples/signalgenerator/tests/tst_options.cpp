#include "options.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <vector>

using namespace SignalGenerator;

namespace {

class CommandLine : public ::testing::Test
{
protected:
    bool parse(std::initializer_list<const char *> arguments)
    {
        std::vector<const char *> all{"signalgenerator"};
        all.insert(all.end(), arguments);
        options = Options();
        return parseOptions(static_cast<int>(all.size()), all.data(), options);
    }

    Options options;
};

TEST_F(CommandLine, MayBeEmpty)
{
    EXPECT_TRUE(parse({}));
    EXPECT_EQ(options.script + options.settings + options.picture, "");
    EXPECT_FALSE(options.headless || options.help);
}

TEST_F(CommandLine, TakesOptionsInAnyOrder)
{
    EXPECT_TRUE(parse({"a.scpi", "--settings", "b.ini", "--headless"}));
    EXPECT_TRUE(options.headless);
    EXPECT_EQ(options.script, "a.scpi");
    EXPECT_EQ(options.settings, "b.ini");
    EXPECT_TRUE(parse({"--autopilot", "--headless", "a.scpi"})) << "a value, however it looks";
    EXPECT_EQ(options.picture, "--headless");
    EXPECT_FALSE(options.headless);
    EXPECT_TRUE(parse({"-"}));
    EXPECT_EQ(options.script, "-");
    EXPECT_TRUE(parse({"--analysis", "off"}));
    EXPECT_EQ(options.analysis, "off");
    EXPECT_TRUE(parse({"--syslog", "logs.lab:514", "--name", "sg1"}));
    EXPECT_EQ(options.collector + ' ' + options.name, "logs.lab:514 sg1");
    EXPECT_TRUE(parse({"--help"}));
    EXPECT_TRUE(options.help);
}

TEST_F(CommandLine, RefusesWhatMakesNoSense)
{
    EXPECT_FALSE(parse({"--nonsense"}));
    EXPECT_FALSE(parse({"-x"}));
    EXPECT_FALSE(parse({""}));
    EXPECT_FALSE(parse({"a.scpi", "b.scpi"}));
    EXPECT_FALSE(parse({"--settings"})) << "no value";
    EXPECT_FALSE(parse({"a.scpi", "--autopilot"}));
    EXPECT_FALSE(parse({"--autopilot", "p.png", "--headless"})) << "nothing to drive";
    EXPECT_FALSE(parse({"--autopilot", "p.png", "-"}));
    EXPECT_FALSE(parse({"--analysis", "maybe"}));
    EXPECT_FALSE(parse({"--syslog", "logs.lab"})) << "no port";
    EXPECT_FALSE(parse({"--name", "sg1"})) << "for nobody";
}

} // namespace
