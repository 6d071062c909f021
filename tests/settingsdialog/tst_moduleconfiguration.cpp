// The text that keeps classes and levels of the modules: what is written, and what is understood of it.

#include "host/classstates.h"
#include "settingsdialog/moduleconfiguration.h"
#include "support/maphost.h"

#include <QBuffer>
#include <QDir>
#include <QTemporaryDir>

#include <functional>
#include <gtest/gtest.h>
#include <utility>

namespace {

using namespace Zorvan;
using namespace Zorvan::test;
using Texts = std::vector<const char *>;

class ModuleConfiguration : public ::testing::Test
{
protected:
    ModuleConfiguration() { Debug::initDebug(); }
    ~ModuleConfiguration() override { Debug::exitDebug(); }

    /// A module in use with levels 0 to 4 and the given classes, all enabled.
    static moduleId module(const char *name, Texts classes = {"<Init>: ", "<Error>: "})
    {
        Texts levels{"critical", "error", "warning", "info", "times"};
        const moduleId id = Debug::createModule(name, name);
        Debug::setMessageLevelDescriptions(id, static_cast<int>(levels.size()), levels.data());
        Debug::setMessageClassDescriptions(id, static_cast<int>(classes.size()), classes.data());
        Debug::setClippingLevel(id, 2);
        static_cast<void>(Debug::isActive(id, 0, 0));
        return id;
    }
    /// "level:" and the numbers of the enabled ones of the first classes.
    static std::string state(moduleId id)
    {
        std::string text = std::to_string(Debug::getClippingLevel(id)) + ':';
        for (int cls = 0; cls < 3; ++cls)
            text += host::isClassEnabled(id, cls) ? ' ' + std::to_string(cls) : "";
        return text;
    }
    /// The state of a module that was at level 2 with all classes.
    static std::string after(QByteArray text, moduleId id)
    {
        Debug::setClippingLevel(id, 2);
        Debug::enableMessageClassType(id, -1);
        QBuffer buffer(&text);
        buffer.open(QIODevice::ReadOnly);
        moduleconfiguration::apply(buffer);
        return state(id);
    }

    MapHost host;
    QTemporaryDir folder;
};

TEST_F(ModuleConfiguration, AFileListsTheModulesInUseAndBringsThemBack)
{
    const moduleId first = module("<Zet\xe4>", {"<debug message>, ", " , ", "<  \xc4rger>: "});
    Debug::createModule("Unused", "Unused");
    const moduleId second = module("Alpha");
    Debug::disableMessageClassType(first, 0);
    Debug::setClippingLevel(first, 4);
    Debug::setClippingLevel(second, -1);
    const QString path = folder.filePath(QStringLiteral("new.dbgcfg"));
    ASSERT_TRUE(moduleconfiguration::save(path));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly | QIODevice::Text));
    EXPECT_TRUE(file.readAll().endsWith("\nZet\xe4;4;\xc4rger,\nAlpha;-1;Init,Error,\n"));
    for (const moduleId each : {first, second}) {
        Debug::disableMessageClassType(each, -1);
        Debug::setClippingLevel(each, 1);
    }
    ASSERT_TRUE(moduleconfiguration::load(path));
    EXPECT_EQ(state(first), "4: 2");
    EXPECT_EQ(state(second), "-1: 0 1");
}

TEST_F(ModuleConfiguration, FilesThatCannotBeOpenedChangeNothing)
{
    const moduleId id = module("Alpha");
    for (const char *const bad : {"", "/", "/missing/a.dbgcfg"}) {
        const QString name = *bad == '\0' ? QString() : folder.path() + QLatin1String(bad);
        EXPECT_FALSE(moduleconfiguration::save(name)) << bad;
        EXPECT_FALSE(moduleconfiguration::load(name)) << bad;
    }
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    EXPECT_EQ(state(id), "2: 0 1");
}

TEST_F(ModuleConfiguration, WhatIsNoFileIsNotWaitedFor)
{
    EXPECT_FALSE(moduleconfiguration::load(QStringLiteral("/dev/zero")));
    EXPECT_FALSE(moduleconfiguration::save(QStringLiteral("/dev/full")));
}

TEST_F(ModuleConfiguration, LinesAreUnderstoodWhateverTheirEndsAndLevels)
{
    const moduleId id = module("Alpha", {"<Init>: ", "<Initial>: ", "<Error>: "});
    const std::pair<const char *, Texts> states[] = {
        {"3: 2", {"Alpha;3;Error,\n", "Alpha;3;Error\r\n", "Alpha;3;E\n\n\r\n", "Alpha;3;Error;x\n"}},
        {"3: 2", {"Alpha;3;error\r", "Alpha;0;Init\nAlpha;3;Error"}},
        {"3:", {"Alpha;3;", "Alpha;3;\r\n", "Alpha;3;,,\n", "Alpha;3;nix,\n"}},
        {"4: 2", {"Alpha;4;Error", "Alpha;5;Error", "Alpha;2147483647;Error"}},
        {"0: 2", {"Alpha;;Error", "Alpha;x;Error", "Alpha;99999999999;Error"}},
        // Names are beginnings, and two words count anywhere: more is enabled, or less, than was saved.
        {"3: 0 1", {"Alpha;3;Init,"}},
        {"3: 0 1 2", {"Alpha;3;Allocation,", "Alpha;3;Install,"}},
        {"3:", {"Alpha;3;Init,NoneSuch,"}},
    };
    for (const auto &[expected, texts] : states) {
        for (const char *const text : texts)
            EXPECT_EQ(after(text, id), expected) << text;
    }
}

TEST_F(ModuleConfiguration, DamagedLinesAreSkippedAndTheOthersApplied)
{
    const moduleId id = module("Alpha");
    const moduleId sameName = module("<Alpha>");
    for (const QByteArray &text :
         {QByteArray(), QByteArray("Alpha"), QByteArray("Alpha;3"), QByteArray("alpha;3;Error\n"),
          QByteArray("\0\xff;\0;\x80\n\n;;;;\n", 14), QByteArray("Beta;3;Error\n;1;Init\n"),
          QByteArray(5000, ';'), QByteArray(5000, 'x'), QByteArray("Alph\0a;3;Error", 14)}) {
        EXPECT_EQ(after(text, id), "2: 0 1") << text.left(20).constData();
        EXPECT_EQ(after(text + "\nAlpha;1;Init\n", id), "1: 0") << text.left(20).constData();
    }
    EXPECT_EQ(state(sameName), "2: 0 1");
}

TEST_F(ModuleConfiguration, ALineIsReadUpTo1023Characters)
{
    const moduleId id = module("Alpha");
    const QByteArray full = QByteArray("Alpha;3;").leftJustified(1018, ',') + "Error";
    EXPECT_EQ(after(full + "x", id), "3: 1") << "what is behind is a piece of its own";
    EXPECT_EQ(after(full + "Alpha;1;Init\n", id), "1: 0");
}

TEST_F(ModuleConfiguration, ALibraryThatEndsMeanwhileIsNotConfiguredFurther)
{
    const moduleId first = module("Alpha");
    const moduleId second = module("Beta");
    struct Tap : MapHost
    {
        std::function<void()> act = [] {};
        void outputLine(const QString &) override
        {
            std::exchange(act, [] {})();
        }
    } tap;
    Debug::setClippingLevel(0, 4); // the library's own module: a notice comes while the first is at work
    moduleId again[2] = {};
    tap.act = [&] {
        Debug::exitDebug();
        EXPECT_TRUE(moduleconfiguration::formatted().isEmpty());
        Debug::initDebug();
        again[0] = module("Alpha");
        again[1] = module("Beta");
    };
    QByteArray text("Alpha;3;Init\nBeta;3;Init\n");
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    moduleconfiguration::apply(buffer);
    ASSERT_EQ(again[0], first); // the ids are used again
    ASSERT_EQ(again[1], second);
    EXPECT_EQ(state(first), "2: 0 1");
    EXPECT_EQ(state(second), "2: 0 1");
}

} // namespace
