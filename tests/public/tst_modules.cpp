// The module table: ids, names, growth, use, descriptions, and what a host's callback may do to it.

#include "support/maphost.h"

#include <zorvan/debug.h>

#include <array>
#include <climits>
#include <gtest/gtest.h>

using Zorvan::Debug;
using Zorvan::moduleId;
using namespace Zorvan::test;
using Lines = std::vector<std::string>;

namespace {

constexpr moduleId kernel = 2;
constexpr moduleId baseBoard = 22;

class Modules : public ::testing::Test
{
protected:
    void SetUp() override { Debug::initDebug(); }
    void TearDown() override { Debug::exitDebug(); }
    static std::string name(moduleId id) { return Debug::getModuleName(id).toStdString(); }
    static std::string classes(moduleId id) { return Debug::getEnabledMessageClasses(id).toStdString(); }
    /// Asks about a module; the answer is always no.
    static void use(moduleId id) { EXPECT_FALSE(Debug::isActive(id, INT_MAX, 0)); }
    static void createModules(moduleId first, moduleId last)
    {
        for (moduleId id = first; id <= last; ++id)
            ASSERT_EQ(Debug::createModule(("m" + std::to_string(id)).c_str(), "Made"), id);
    }
    Lines print(moduleId id)
    {
        host.takeLines();
        Debug::println(id, 0, QStringLiteral("text"), 0);
        return host.takeLines();
    }
    static Lines prefixes() // by id
    {
        int count = 0;
        int *ids = nullptr;
        const char **const names = Debug::getModuleNames(&count, &ids);
        EXPECT_EQ(ids[count - 1], count - 1);
        Lines result(names, names + count);
        Debug::releaseModuleNames(names, count, ids);
        return result;
    }
    static Lines classTexts(moduleId id)
    {
        int count = 0;
        const char **const texts = Debug::getMessageClassDescriptions(id, &count);
        return Lines(texts, texts + count);
    }
    /// Calls every setter of a module that does not exist, and the getters whose answer is always the same.
    static void expectNoModule(moduleId id)
    {
        const char *text = "<text>, ";
        Debug::setModuleDescription(id, "name", "description");
        Debug::setMessageClassDescriptions(id, 1, &text);
        Debug::setMessageLevelDescriptions(id, 1, &text);
        for (const int cls : {0, -1, -2, INT_MIN, INT_MAX}) {
            Debug::enableMessageClassType(id, cls);
            Debug::disableMessageClassType(id, cls);
        }
        Debug::enableClasses(id, QStringLiteral("none"));
        Debug::enableLevel(id, QStringLiteral("full"));
        Debug::setClippingLevel(id, 4);
        Debug::makeCurrentSettingsDefault(id);
        Debug::getEnabledMessageLevel(id);
        EXPECT_EQ(name(id), "");
        int count = 7;
        EXPECT_EQ(Debug::getMessageClassDescriptions(id, &count), nullptr);
        EXPECT_EQ(count, 0);
        EXPECT_EQ(Debug::getMessageLevelDescriptions(id, nullptr), nullptr);
    }

    MapHost host;
};

class NoTable : public Modules
{
    void SetUp() override {}
};

TEST_F(Modules, IdsAreDenseWhileTheTableDoubles)
{
    Debug::setClippingLevel(kernel, 3);
    Debug::enableClasses(kernel, QStringLiteral("time"));
    EXPECT_EQ(Debug::getClippingLevel(27), -1);
    for (moduleId id = 27; id < 120; ++id) {
        const int capacity = id < 54 ? 54 : (id < 108 ? 108 : 216);
        createModules(id, id);
        EXPECT_EQ(Debug::getClippingLevel(capacity - 1), 0);
        EXPECT_EQ(Debug::getClippingLevel(capacity), -1);
        use(id);
        use(capacity - 1);
        EXPECT_EQ(name(capacity - 1), id == capacity - 1 ? "m" + std::to_string(id) : "") << "nobody's yet";
    }
    EXPECT_EQ(classes(kernel), "time meas");
    EXPECT_EQ(Debug::getClippingLevel(kernel), 3);
    Debug::setClippingLevel(27, 0);
    EXPECT_EQ(Debug::getClippingLevel(27), -1) << "a created module has no levels";
    EXPECT_EQ(classes(27), "all");
}

TEST_F(Modules, AskingPutsAModuleIntoUseAndWidensThePrefixes)
{
    Lines expected(27);
    expected[0] = "<#DebugServer#> "; // its own notices asked about it during the start
    EXPECT_EQ(prefixes(), expected);
    use(kernel);
    Debug::getActiveLevel(baseBoard, 0);
    EXPECT_EQ(prefixes().at(baseBoard), "<Tarnel-BaseBoard> ");
    EXPECT_EQ(prefixes().at(kernel), "<      KLV-Kernel> ");
    expected[kernel] = "<   KLV-Kernel> ";
    Debug::setModuleDescription(baseBoard, " a:<b>, \xe4, ", "Tarnel");
    expected[baseBoard] = "<   a:<b>, \xe4, > ";
    EXPECT_EQ(prefixes(), expected);
    EXPECT_EQ(Debug::getModuleName(baseBoard), QString::fromLatin1("ab \xe4"));
    for (moduleId id = 0; id < 27; ++id)
        Debug::setClippingLevel(id, -1);
    EXPECT_FALSE(Debug::isActive(3, 0, 0));
    EXPECT_EQ(prefixes(), expected) << "while all is silent nobody comes into use";
}

TEST_F(Modules, ThatAreThereFromTheStartKeepTheirIds)
{
    std::string names;
    for (moduleId id = 0; id < 27; ++id) {
        use(id);
        names += name(id) + ' ';
    }
    const std::string unnamed = "Please call setModuleDescription() ";
    EXPECT_EQ(
        names,
        "#DebugServer# KLV-Startup KLV-Kernel KLV-Gui KLV-Database KLV-OrgLayer KLV-Unicod1 KLV-Unicod2 "
        "KLV-Unicod3 KLV-Unicod4 KLV-DACIF KLV-Utilities KLV-PlugIn KLV-Scpi KLV-ListAdmin KLV-Sweep "
        "KLV-BBIN KLV-Fader KLV-B12 "
            + unnamed + unnamed + unnamed + "Tarnel-BaseBoard Ostrik-AMB WAVEMILL2 " + unnamed + unnamed);
}

TEST_F(Modules, ARemoteClientStartsFromAnEmptyTable)
{
    createModules(27, 60);
    use(kernel);
    EXPECT_EQ(Debug::createModule("debugserverclient", "Made"), 61) << "only the exact name is special";
    EXPECT_EQ(Debug::createModule("DebugServerClient", "Client"), 27);
    EXPECT_EQ(Debug::getClippingLevel(54), -1);
    EXPECT_EQ(prefixes(), Lines(28));
    EXPECT_EQ(classTexts(kernel), Lines());
    EXPECT_EQ(print(kernel), Lines{"text"});
    EXPECT_EQ(name(kernel), "KLV-Kernel");
    Debug::setClippingLevel(3, 4); // finds no enabled class anywhere
    EXPECT_EQ(print(kernel), Lines());
}

TEST_F(Modules, DescriptionsAreCopiedAndMayComeFromTheModuleItself)
{
    std::string alpha = "<alpha>, ";
    std::array<char *, 3> texts = {nullptr, alpha.data(), nullptr};
    Debug::setMessageClassDescriptions(kernel, -1, texts.data() + 1);
    EXPECT_EQ(classTexts(kernel), Lines{"<alpha>, "});
    Debug::setMessageClassDescriptions(kernel, 2, texts.data());
    alpha[1] = 'X';
    int count = 0;
    const char **const own = Debug::getMessageClassDescriptions(kernel, &count);
    Debug::setMessageClassDescriptions(kernel, count, own);
    Debug::setMessageLevelDescriptions(kernel, count, own);
    EXPECT_EQ(classTexts(kernel), (Lines{"", "<alpha>, "}));
    EXPECT_STREQ(own[1], "<alpha>, ") << "what was handed out stays readable";
    Debug::enableLevel(kernel, QStringLiteral("alpha"));
    EXPECT_EQ(Debug::getEnabledMessageLevel(kernel), QStringLiteral("alpha"));
    for (const int entries : {2, -1, -5}) {
        Debug::setMessageClassDescriptions(kernel, entries, entries == -5 ? own : nullptr);
        EXPECT_EQ(classTexts(kernel), Lines());
    }
}

TEST_F(Modules, UnknownModulesAndNullTextsAreHarmlessEverywhere)
{
    use(Debug::createModule(nullptr, nullptr));
    EXPECT_EQ(name(27), "");
    for (const moduleId id : {-1, -2, INT_MIN, 54, INT_MAX}) {
        expectNoModule(id);
        EXPECT_FALSE(Debug::isActive(id, 0, 0));
        EXPECT_EQ(Debug::getActiveLevel(id, 0), -1);
        EXPECT_EQ(Debug::getClippingLevel(id), -1);
        EXPECT_EQ(classes(id), "none");
        EXPECT_EQ(print(id), Lines());
        if (id != -1) // -1 stands for all modules
            Debug::setOutputReceiver(id, [](Zorvan::hookData *) {});
    }
    EXPECT_EQ(host.written(), Lines());
    Debug::exitDebug();
    EXPECT_TRUE(Debug::isActive(0, 99, 0)) << "a receiver of an unknown module must not keep the library up";
}

TEST_F(Modules, ASettingsReaderMayPrintAndChangeTheTable)
{
    std::array<const char *, 2> texts = {"<first>, ", "<second>, "};
    const moduleId own = Debug::createModule("Own", "Own");
    host.store("OwnDebugClasses", "second");
    host.onRead = [&](const QString &) {
        createModules(28, 67);
        Debug::println(0, 0, QStringLiteral("from the reader"), 0);
    };
    Debug::setMessageClassDescriptions(own, 2, texts.data());
    EXPECT_EQ(classes(own), "second");
    EXPECT_EQ(host.takeLines(), Lines{"<debug message>, <+ CRITICAL +>: from the reader"});
    host.onRead = [](const QString &) { Debug::createModule("DebugServerClient", "Client"); };
    Debug::setMessageClassDescriptions(60, 2, texts.data());
    EXPECT_EQ(classes(60), "none");
    host.onRead = [](const QString &) { Debug::exitDebug(); };
    Debug::setMessageLevelDescriptions(kernel, 2, texts.data());
    EXPECT_EQ(classes(kernel), "");
}

TEST_F(NoTable, AnswersAreNeutralAndSettersForgotten)
{
    const auto expectNoTable = [&] {
        for (const moduleId id : {-1, 0, 2, 27, 1000}) {
            expectNoModule(id);
            EXPECT_TRUE(Debug::isActive(id, 99, 5));
            EXPECT_EQ(Debug::getActiveLevel(id, 5), 1);
            EXPECT_EQ(Debug::getClippingLevel(id), 0);
            EXPECT_EQ(classes(id), "");
        }
        EXPECT_EQ(Debug::getModuleNames(nullptr), nullptr);
        EXPECT_EQ(Debug::createModule("Early", "Early"), -1);
        EXPECT_EQ(Debug::getEnabledSettings(), QStringLiteral("displayModuleName,"));
        EXPECT_EQ(host.written(), Lines());
    };
    expectNoTable();
    for (int start = 0; start < 2; ++start) {
        Debug::initDebug();
        EXPECT_EQ(classes(kernel), "all");
        createModules(27, 27);
        int count = 0;
        const char **const names = Debug::getModuleNames(&count);
        Debug::enableSettings(QStringLiteral("displayThreadID,disableOutput"));
        Debug::exitDebug();
        expectNoTable();
        EXPECT_STREQ(names[0], "<#DebugServer#> ") << "they belong to the caller";
        Debug::releaseModuleNames(names, count);
    }
}

} // namespace
