#include "console.h"
#include "debugsession.h"
#include "instrument.h"
#include "panel/remotecontrol.h"
#include "support/guiapplication.h"
#include "support/programdata.h"

#include <QSignalSpy>

#include <chrono>
#include <gtest/gtest.h>

using namespace SignalGenerator;
using namespace Zorvan::test;

namespace {

class RemoteControlTest : public ::testing::Test
{
protected:
    double frequency() const { return instrument.status().settings[ParameterId::Frequency]; }
    bool becomesIdle() const
    {
        return runUntil([&] { return !remote->isBusy() && !remote->scriptRuns(); });
    }
    void startScript(const std::string &lines)
    {
        const std::string path = libraryFile("test.scpi");
        writeFile(path, lines);
        remote->startScript(QString::fromStdString(path));
    }

    TestApplication<QCoreApplication> application;
    DebugSession session{QString()};
    Instrument instrument;
    Console console{instrument};
    std::optional<RemoteControl> remote{std::in_place, instrument, console};
};

TEST_F(RemoteControlTest, CarriesOutCommandsInTheirOrder)
{
    QSignalSpy done(&*remote, &RemoteControl::done);
    for (int i = 1; i <= 20; ++i)
        remote->send("FREQ " + std::to_string(i) + " MHz");
    EXPECT_TRUE(remote->isBusy());
    EXPECT_EQ(inWorker([&] { return remote->ask("FREQ?"); }), "20000000");
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(done.size(), 20);
}

TEST_F(RemoteControlTest, TakesErrorsOnlyIfThereAreSome)
{
    QSignalSpy taken(&*remote, &RemoteControl::errorsTaken);
    remote->takeErrors();
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(taken.size(), 0);
    remote->send("NONSENSE");
    remote->send("FREQ 99 GHz");
    remote->takeErrors();
    EXPECT_TRUE(becomesIdle());
    ASSERT_EQ(taken.size(), 1);
    EXPECT_EQ(taken.first().first().toString(),
              QLatin1String("-113,\"Undefined header;NONSENSE\",-222,\"Data out of range;99000000000\""));
    EXPECT_EQ(instrument.status().errors, 0U);
}

TEST_F(RemoteControlTest, ReportsEachLineOfAScript)
{
    QSignalSpy advanced(&*remote, &RemoteControl::scriptAdvanced);
    QSignalSpy ended(&*remote, &RemoteControl::scriptEnded);
    startScript("# comment\nFREQ 2 GHz\n\nFREQ 3 GHz");
    EXPECT_TRUE(remote->scriptRuns());
    remote->startScript(QStringLiteral("/missing")); // one at a time
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(advanced.size(), 4);
    EXPECT_EQ(advanced.last(), (QList<QVariant>{4, 4}));
    ASSERT_EQ(ended.size(), 1);
    EXPECT_EQ(ended.first().first().toString(), QLatin1String("test.scpi: all 4 lines are done"));
    EXPECT_EQ(frequency(), 3e9);
    startScript("");
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(ended.last().first().toString(), QLatin1String("test.scpi: all 0 lines are done"));
}

TEST_F(RemoteControlTest, LetsCommandsInBetweenTheLinesOfAScript)
{
    startScript("FREQ:MODE SWE;:FREQ:STAR 4 GHz;:SWE:DWEL 100 s;EXEC\n*OPC?\nFREQ 2 GHz\n");
    EXPECT_TRUE(runUntil([&] { return instrument.status().hardware.frequencyHz == 4e9; }));
    remote->send("FREQ 3 GHz");
    instrument.abort(); // the second line waits for it
    EXPECT_TRUE(becomesIdle());
    EXPECT_EQ(frequency(), 2e9) << "the third line comes after the command";
}

TEST_F(RemoteControlTest, EndsWhileAScriptWaitsForALongSweep)
{
    const auto start = std::chrono::steady_clock::now();
    QSignalSpy advanced(&*remote, &RemoteControl::scriptAdvanced);
    startScript("FREQ:MODE SWE;:SWE:DWEL 100 s\nSWE:EXEC;*OPC?\nFREQ 2 GHz\n");
    EXPECT_TRUE(runUntil([&] { return advanced.size() == 1; }));
    remote->send("FREQ 3 GHz"); // waits behind the second or the third line
    remote.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(50));
    EXPECT_NE(frequency(), 2e9) << "no further line of the script";
}

} // namespace
