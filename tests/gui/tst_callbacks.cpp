// A host that does what it likes when it is asked for a setting.

#include "boxtest.h"

using namespace Zorvan;
using namespace Zorvan::test;

namespace {

void print()
{
    Debug::println(kernel, 0, QStringLiteral("line"), 0);
}

struct Act
{
    const char *name;
    void (*run)();
};

const Act acts[] = {
    {"Prints", print},
    {"HandlesEvents", [] { QCoreApplication::processEvents(); }},
    {"Clears", &Debug::clear},
    {"EndsTheLibrary", &Debug::exitDebug},
    {"EndsTheLibraryWithoutALoop",
     [] {
         Debug::eventLoopFinished();
         Debug::exitDebug();
     }},
    {"EndsAndStartsTheLibrary",
     [] {
         Debug::exitDebug();
         Debug::initDebug();
     }},
};

class SettingsReader : public BoxTest, public ::testing::WithParamInterface<Act>
{
protected:
    /// The reader acts the first time that the library reads \a key during \a work.
    template <typename Work>
    void actOn(const char *key, Work work)
    {
        SCOPED_TRACE(key);
        bool hasActed = false;
        host.onRead = [&](const QString &read) {
            if (read == QLatin1String(key) && !std::exchange(hasActed, true))
                GetParam().run();
        };
        work();
        runOn();
        EXPECT_TRUE(hasActed);
        host.onRead = nullptr;
        Debug::exitDebug();
        Debug::initDebug();
        QCoreApplication::processEvents();
    }
};

TEST_P(SettingsReader, DoesNoHarm)
{
    robot.reset(); // whether a box comes depends
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [] {
        for (QDialog *const dialog : openDialogs())
            dialog->reject();
    });
    closer.start(1);
    actOn("noWindowOutput", [] {
        print();
        runOn();
    });
    for (const char *const key : {"showWindow", "serverPortOpen"}) {
        actOn(key, [] {
            Debug::exitDebug();
            Debug::initDebug();
            print();
            QCoreApplication::processEvents();
        });
    }
    for (const bool modal : {true, false}) {
        const auto askOne = [modal] { return ask(modal, ok); };
        actOn("MessageFontSize", askOne);
        actOn("MessageFontSize", [&] { inWorker(askOne); });
    }
    closer.stop();
    robot.emplace();
    robot->click("OK");
    EXPECT_EQ(ask(true, ok), ok) << "all works as before";
    host.takeLines();
    print();
    EXPECT_EQ(host.linesWith("line"), 1);
}

INSTANTIATE_TEST_SUITE_P(That, SettingsReader, ::testing::ValuesIn(acts),
                         [](const auto &each) { return std::string(each.param.name); });

} // namespace
