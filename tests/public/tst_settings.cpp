// What the start reads, the settings string, silencing everything, saving a configuration.

#include "support/maphost.h"
#include "support/programdata.h"

#include <zorvan/debug.h>

#include <gtest/gtest.h>
#include <map>

using Zorvan::Debug;
using Zorvan::moduleId;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

constexpr moduleId kernel = 2;
constexpr moduleId gui = 3;

class Settings : public ::testing::Test
{
protected:
    void TearDown() override { Debug::exitDebug(); }
    static void restart()
    {
        Debug::exitDebug();
        Debug::initDebug();
    }
    static void enable(const std::string &text) { Debug::enableSettings(QString::fromStdString(text)); }
    static std::string enabled() { return Debug::getEnabledSettings().toStdString(); }
    static void save(moduleId module) { Debug::makeCurrentSettingsDefault(module); }
    std::string stored(const char *key) { return host.stored(key).toStdString(); }
    MapHost host;
};

TEST_F(Settings, FlagsAreOnWhereTheStoredTextContainsOn)
{
    const std::map<std::string, int> bits = {
        {"ShowModule", 2},      {"FileOutput", 1},     {"ThrowAssert", 16},    {"AllowClear", 32},
        {"ShowTimestamp", 256}, {"ShowThreadID", 512}, {"ConsoleOutput", 1024}};
    for (const auto &[name, bit] : bits) {
        const std::string key = "DebugServer" + name;
        for (const auto &[value, on] : std::vector<std::pair<const char *, bool>>{{"ON", true},
                                                                                  {"yes, On", true},
                                                                                  {"month", true},
                                                                                  {"o n", false},
                                                                                  {"true", false},
                                                                                  {"", false}}) {
            host.store(key.c_str(), value);
            restart();
            EXPECT_EQ(Debug::getDisplayFlags(), on ? 12 + bit : 12) << key << '=' << value;
        }
    }
    Zorvan::IUtilityInterface neutral;
    for (Zorvan::IUtilityInterface *const handler :
         {&neutral, static_cast<Zorvan::IUtilityInterface *>(nullptr)}) {
        Debug::setUtilityCallbackHandler(handler);
        restart();
        EXPECT_EQ(Debug::getDisplayFlags(), 12) << "the module name is the only flag that is on before";
        EXPECT_STREQ(Debug::getOutputFileName(), libraryFile("GYX_Debug_Output.log").c_str());
    }
}

TEST_F(Settings, TheStartAnnouncesItselfWhenItsModuleIsAtInfo)
{
    host.store("DebugServerDebugLevel", "info");
    Debug::initDebug();
    const Lines lines = host.takeLines();
    ASSERT_EQ(lines.size(), 2U * 27 + 3);
    const std::string head = "<debug message>, <        Info>: ";
    const std::string named = "<#DebugServer#> " + head;
    EXPECT_EQ(lines[0], named + "new message class mask for module #DebugServer#:");
    EXPECT_EQ(lines[1], named + " <debug message>,  <  time meas  >, ");
    EXPECT_EQ(lines[52], named + "new message class mask for module Please call setModuleDescription():");
    EXPECT_EQ(Lines(lines.end() - 3, lines.end()),
              (Lines{head + "KLV debug flag settings changed:",
                     head + "+ displaying message class description", head + "+ displaying message level"}));
}

TEST_F(Settings, OutputFileIsPlacedInTheLibrarysFolderUnlessAbsolute)
{
    host.store("DebugServerFile", "own.log");
    host.store("DebugServerFileSize", 5000);
    host.store("DebugServerFileOutput", "On");
    restart();
    EXPECT_EQ(Debug::getMaxOutputFileSize(), 5000);
    Debug::println(kernel, 0, QStringLiteral("text"), 0);
    EXPECT_EQ(readFile(libraryFile("own.log")), "<debug message>, <+ CRITICAL +>: text\r\n");
    const std::string absolute = libraryFolder() + "-elsewhere.log";
    host.store("DebugServerFile", absolute.c_str());
    host.store("DebugServerFileSize", -7);
    restart();
    EXPECT_EQ(Debug::getOutputFileName(), absolute);
    EXPECT_EQ(Debug::getMaxOutputFileSize(), -7);
}

TEST_F(Settings, TheSettingsStringTakesAndGivesEveryKeyword)
{
    Debug::initDebug();
    const std::vector<std::pair<std::string, int>> keywords = {
        {"activateFileProtocol", 1},    {"throwAssertion", 16},   {"displayTimeStamp", 256},
        {"displayThreadID", 512},       {"displayModuleName", 2}, {"activateConsoleOutput", 1024},
        {"allowProgrammaticClear", 32}, {"disableOutput", 0}};
    std::string all;
    for (const auto &[keyword, bit] : keywords) {
        enable("x" + keyword + "x");
        EXPECT_EQ(enabled(), keyword + ',');
        EXPECT_EQ(Debug::getDisplayFlags(), 12 + bit) << keyword;
        all += keyword + ',';
    }
    for (const std::string &text : {all, std::string()}) {
        enable(text);
        EXPECT_EQ(enabled(), text);
    }
    enable("allowProgrammaticClear throwAssertion displaytimestamp DISABLEOUTPUT");
    EXPECT_EQ(enabled(), "throwAssertion,allowProgrammaticClear,");
}

TEST_F(Settings, DisabledOutputComesBackWithTheNextChangeOfAModule)
{
    Debug::initDebug();
    for (void (*const change)() : std::initializer_list<void (*)()>{
             [] { Debug::setClippingLevel(gui, 1); }, [] { Debug::enableLevel(gui, QStringLiteral("info")); },
             [] { Debug::enableMessageClassType(gui, 1); }, [] { Debug::disableMessageClassType(gui, 1); },
             [] { enable("displayThreadID"); }}) {
        enable("disableOutput");
        Debug::setDisplayFlags(-7); // no change of a module
        EXPECT_FALSE(Debug::isActive(kernel, 0, 0));
        EXPECT_EQ(Debug::getActiveLevel(kernel, 0), 0);
        EXPECT_EQ(enabled(), "displayThreadID,disableOutput,");
        change();
        EXPECT_TRUE(Debug::isActive(kernel, 0, 0));
        EXPECT_EQ(enabled(), "displayThreadID,");
    }
}

TEST_F(Settings, ConfigurationIsSavedOnlyWhereItDiffers)
{
    Debug::initDebug();
    Debug::enableClasses(kernel, QStringLiteral("time"));
    Debug::setClippingLevel(kernel, 2);
    save(kernel);
    EXPECT_EQ(host.written(), Lines()) << "nobody has used it";
    Debug::isActive(kernel, 0, 0);
    Debug::isActive(gui, 0, 0);
    for (int repetition = 0; repetition < 2; ++repetition) {
        save(gui);
        save(kernel);
        EXPECT_EQ(host.written(), (Lines{"GuiDebugLevel", "KernelDebugClasses", "KernelDebugLevel"}));
    }
    EXPECT_EQ(stored("GuiDebugLevel"), "+ CRITICAL +") << "not the word of the default";
    EXPECT_EQ(stored("KernelDebugClasses"), "time meas");
    EXPECT_EQ(stored("KernelDebugLevel"), "Warning");
    Debug::enableClasses(gui, QStringLiteral("none"));
    Debug::setClippingLevel(gui, -1);
    save(gui);
    Debug::setClippingLevel(kernel, 0);
    save(kernel);
    restart();
    EXPECT_EQ(Debug::getClippingLevel(gui), -1);
    EXPECT_EQ(Debug::getEnabledMessageClasses(gui), QStringLiteral("none"));
    EXPECT_EQ(Debug::getClippingLevel(kernel), 0);
    EXPECT_EQ(Debug::getEnabledMessageClasses(kernel), QStringLiteral("time meas"));
    Debug::isActive(gui, 0, 0);
    Debug::setUtilityCallbackHandler(nullptr);
    save(gui);
}

} // namespace
