// Which messages pass: classes, levels, clipping, notices, saved settings, smoke-test mode.

#include "support/maphost.h"

#include <zorvan/debug.h>

#include <climits>
#include <gtest/gtest.h>

using Zorvan::Debug;
using Zorvan::moduleId;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;
using SpecsByResult = std::vector<std::pair<std::string, Lines>>;

namespace {

constexpr moduleId kernel = 2;

class Classification : public ::testing::Test
{
protected:
    void SetUp() override { Debug::initDebug(); }
    void TearDown() override { Debug::exitDebug(); }
    static std::string classes(moduleId id = kernel) { return text(Debug::getEnabledMessageClasses(id)); }
    static std::string level(moduleId id = kernel) { return text(Debug::getEnabledMessageLevel(id)); }
    static std::string text(const QString &string) { return string.toStdString(); }
    static void enableClasses(const char *text) { Debug::enableClasses(kernel, QString::fromLatin1(text)); }
    static bool active(int level, int cls) { return Debug::isActive(kernel, level, cls); }
    static int clippingAfter(int level)
    {
        Debug::setClippingLevel(kernel, level);
        return Debug::getClippingLevel(kernel);
    }
    using Texts = std::vector<const char *>;
    static void describe(moduleId id, Texts classTexts, Texts levelTexts)
    {
        Debug::setMessageClassDescriptions(id, static_cast<int>(classTexts.size()), classTexts.data());
        Debug::setMessageLevelDescriptions(id, static_cast<int>(levelTexts.size()), levelTexts.data());
    }

    MapHost host;
};

TEST_F(Classification, LevelZeroPassesWhateverItsClass)
{
    EXPECT_EQ(clippingAfter(2), 2);
    EXPECT_TRUE(active(2, 0));
    EXPECT_FALSE(active(3, 0));
    enableClasses("none");
    for (const int cls : {0, 7, 64, -1, -2, INT_MIN, INT_MAX}) {
        EXPECT_TRUE(active(0, cls)) << cls;
        EXPECT_FALSE(active(1, cls)) << cls;
    }
}

TEST_F(Classification, ClippingIsLoweredToTheLastLevelButHasNoFloor)
{
    for (const int tooHigh : {5, INT_MAX})
        EXPECT_EQ(clippingAfter(tooHigh), 4);
    EXPECT_FALSE(active(5, 1));
    EXPECT_EQ(clippingAfter(-7), -7);
    EXPECT_EQ(level(), "release");
    EXPECT_EQ(clippingAfter(-1), -1);
    EXPECT_FALSE(active(0, 0));
    EXPECT_TRUE(active(-1, 0)) << "not above -1";
    EXPECT_FALSE(active(-1, 7)) << "only level 0 is exempt from the class";
}

TEST_F(Classification, NothingPassesUnlessSomeModuleHasALevelAndAClass)
{
    for (const int clipping : {-1, 4}) {
        for (moduleId id = 0; id < 27; ++id) {
            Debug::setClippingLevel(id, clipping);
            if (clipping == 4)
                Debug::enableMessageClassType(id, -2); // none; the entry for -2 itself is no class
        }
        for (const int level : {-1, 0, 1})
            EXPECT_FALSE(active(level, 0));
        EXPECT_EQ(Debug::getActiveLevel(kernel, 0), 0);
    }
    Debug::enableMessageClassType(17, 1);
    EXPECT_TRUE(active(0, 0));
    EXPECT_FALSE(active(1, 0));
    EXPECT_EQ(Debug::getActiveLevel(kernel, 0), -1);
}

TEST_F(Classification, ClassesAreNamedByTheirBeginnings)
{
    Debug::setClippingLevel(kernel, 4);
    for (const auto &[result, texts] :
         SpecsByResult{{"all", {"ALL", "small", "debug,all", "d,t"}},
                       {"none", {"None", "nonetheless, all", "message", "<debug", "", ",,"}},
                       {"debug message", {"DEBUG", "debug message", "debug, time"}},
                       {"time meas", {"time,", ",t", "Time Meas"}}}) {
        for (const std::string &text : texts) {
            enableClasses(text.c_str());
            EXPECT_EQ(classes(), result) << text;
            EXPECT_EQ(active(1, -1), result == "all" && text != "d,t")
                << "all classes at once, not one by one";
        }
    }
}

TEST_F(Classification, LevelsAreNamedByAPartOfTheirDescription)
{
    for (const auto &[result, texts] : SpecsByResult{
             {"+ CRITICAL +", {"CRITICAL", "critical", "+ critical +"}},
             {"Error", {"error", "no such level", "error,info"}}, // what fits no level changes nothing
             {"Warning", {"Warning", "<     w"}},
             {"Info", {"info", "in"}},
             {"Time Meas", {"time meas", "e", "", "Fully"}},
             {"release", {"RELEASE", "full release"}}}) {
        for (const std::string &text : texts) {
            Debug::setClippingLevel(kernel, 1);
            Debug::enableLevel(kernel, QString::fromStdString(text));
            EXPECT_EQ(level(), result) << text;
        }
    }
}

TEST_F(Classification, ClassesBeyondTheDescriptionsAreRemembered)
{
    Debug::setClippingLevel(kernel, 4);
    for (const int cls : {2, 63, 64, 65, 100000, INT_MAX}) {
        EXPECT_FALSE(active(1, cls)) << cls;
        Debug::enableMessageClassType(kernel, cls);
        EXPECT_EQ(classes(), "all");
        Debug::disableMessageClassType(kernel, cls);
        EXPECT_FALSE(active(1, cls)) << cls;
        EXPECT_EQ(Debug::getActiveLevel(kernel, cls), -1) << cls;
        EXPECT_NE(classes(), "all") << cls;
        EXPECT_TRUE(active(1, 0) && active(1, 1)) << cls;
        Debug::enableMessageClassType(kernel, cls);
        enableClasses("none"); // reaches the described ones only
        EXPECT_TRUE(active(1, cls)) << cls;
        EXPECT_EQ(Debug::getActiveLevel(kernel, cls), 4) << cls;
        enableClasses("all");
    }
}

TEST_F(Classification, ChangesOfAllClassesAreAnnouncedOnce)
{
    const std::string head = "<debug message>, <        Info>: ";
    const std::string first = head + "new message class mask for module KLV-Kernel:";
    const Lines full = {first, head + " <debug message>,  <  time meas  >, "};
    const Lines empty = {first, head};
    const auto notices = [this](auto change, auto argument) {
        host.takeLines();
        change(kernel, argument);
        return host.takeLines();
    };
    EXPECT_EQ(notices(&Debug::enableMessageClassType, -1), Lines())
        << "the library's own module is at critical";
    Debug::enableLevel(0, QStringLiteral("info"));
    for (const int cls : {-1, -2}) {
        EXPECT_EQ(notices(&Debug::enableMessageClassType, cls), cls == -1 ? full : empty);
        EXPECT_EQ(classes(), cls == -1 ? "all" : "none");
        EXPECT_EQ(notices(&Debug::disableMessageClassType, cls), cls == -1 ? empty : full);
        EXPECT_EQ(classes(), cls == -1 ? "none" : "all");
    }
    EXPECT_EQ(notices(&Debug::disableMessageClassType, 1), Lines());
    EXPECT_EQ(notices(&Debug::enableClasses, QStringLiteral("debug")), empty)
        << "before the single classes come";
}

TEST(SmokeTest, PassesLevelZeroAloneEvenIfItsReaderPrints)
{
    MapHost host;
    host.store("doingSmokeTest", 1);
    host.store("DebugServerDebugLevel", "full");
    host.onRead = [](const QString &) { Debug::println(kernel, 0, QStringLiteral("text"), 4); };
    Debug::initDebug();
    Debug::setClippingLevel(kernel, -1);
    EXPECT_TRUE(Debug::isActive(kernel, 0, 0));
    EXPECT_FALSE(Debug::isActive(kernel, -1, 0));
    EXPECT_FALSE(Debug::isActive(0, 1, 0));
    EXPECT_EQ(Debug::getActiveLevel(kernel, 0), 0);
    EXPECT_EQ(host.takeLines().size(), 0U);
    Debug::exitDebug();
}

TEST(SmokeTest, IsAskedForOnceInTheLifeOfAProcess)
{
    MapHost host;
    host.store("doingSmokeTest", 2);
    EXPECT_TRUE(Debug::isActive(kernel, 1, 0));
    EXPECT_EQ(host.reads("doingSmokeTest"), 0) << "not without a table";
    Debug::initDebug();
    EXPECT_EQ(host.reads("doingSmokeTest"), 1);
    EXPECT_EQ(Debug::getActiveLevel(0, 0), 0);
    Debug::exitDebug();
    host.store("doingSmokeTest", 1);
    host.store("KernelDebugLevel", "full");
    Debug::initDebug();
    EXPECT_TRUE(Debug::isActive(kernel, 4, 0));
    EXPECT_EQ(Debug::getActiveLevel(kernel, 0), 4);
    Debug::exitDebug();
}

} // namespace
