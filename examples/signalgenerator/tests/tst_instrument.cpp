#include "debugsession.h"
#include "instrument.h"
#include "modules.h"

#include <chrono>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <thread>
#include <vector>

using namespace SignalGenerator;

namespace {

class InstrumentTest : public ::testing::Test
{
protected:
    std::string execute(const std::string &line) { return m_instrument.execute(line); }

    DebugSession m_session{QString()};
    Instrument m_instrument;
};

TEST_F(InstrumentTest, BringsSettingsToTheHardware)
{
    EXPECT_EQ(execute("FREQ 100 MHz;:POW -17;:OUTP ON;*OPC?"), "1");
    EXPECT_EQ(execute("DIAG:HARD?"), "LOCKED,100000000,35");
    EXPECT_EQ(execute("*RST;*OPC?;:FREQ?;:POW?;:OUTP?"), "1;1000000000;-30;0");
    EXPECT_EQ(execute("DIAG:HARD?"), "LOCKED,1000000000,50");
}

TEST_F(InstrumentTest, RefusesValuesOutOfRangeAndKeepsTheOldOnes)
{
    EXPECT_EQ(execute("FREQ 60 GHz;:POW -146;:SWE:POIN 1;:AM 101 PCT;:FREQ?"), "1000000000");
    EXPECT_EQ(execute("SYST:ERR:COUN?"), "4");
    EXPECT_EQ(execute("SYST:ERR?"), "-222,\"Data out of range;60000000000\"");
    EXPECT_EQ(execute("FREQ MIN;FREQ?;FREQ MAX;FREQ?;FREQ? DEF"), "9000;6000000000;1000000000");
}

TEST_F(InstrumentTest, TakesOffsetsIntoAccount)
{
    EXPECT_EQ(execute("FREQ:OFFS 2 GHz;:POW:OFFS 10;:FREQ?;:POW?"), "3000000000;-20");
    EXPECT_EQ(execute("FREQ 2.5 GHz;*OPC?"), "1");
    EXPECT_EQ(execute("DIAG:HARD?"), "LOCKED,500000000,50");
    EXPECT_EQ(execute("FREQ? MAX"), "8000000000") << "the range moves along";
    EXPECT_EQ(execute("FREQ MAX;*OPC?;:DIAG:HARD?"), "1;LOCKED,6000000000,50");
}

TEST_F(InstrumentTest, SweepsOnlyInItsModeAndReturnsToTheCarrier)
{
    EXPECT_EQ(execute("SWE:EXEC;*OPC?;:SYST:ERR?"), "1;-221,\"Settings conflict;FREQuency:MODE\"");
    EXPECT_EQ(execute("FREQ:MODE SWE;:SWE:POIN 3;DWEL 50 us;EXEC;*OPC?"), "1");
    EXPECT_EQ(execute("DIAG:HARD?;:SYST:ERR?"), "LOCKED,1000000000,50;0,\"No error\"");
}

TEST_F(InstrumentTest, AbortsALongSweepAtOnce)
{
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(execute("FREQ:MODE SWE;:SWE:DWEL 100 s;EXEC;:ABOR;*OPC?"), "1");
    EXPECT_EQ(execute("SWE:EXEC"), ""); // left running: the destructor has to end it
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST_F(InstrumentTest, NeedsListsThatFitTogether)
{
    EXPECT_EQ(execute("FREQ:MODE LIST;:LIST:TRIG:EXEC;:SYST:ERR?"),
              "-221,\"Settings conflict;no list is selected\"");
    (void)execute("LIST:SEL 'A';FREQ 1 GHz, 2 GHz, 3 GHz;POW 0, 1");
    EXPECT_EQ(execute("LIST:TRIG:EXEC;:SYST:ERR?"), "-221,\"Settings conflict;list A\"");
    EXPECT_EQ(execute("LIST:POW 0;DWEL 50 us;TRIG:EXEC;*OPC?;:SYST:ERR?"), "1;0,\"No error\"");
}

TEST_F(InstrumentTest, ReportsFaultsOfTheHardware)
{
    EXPECT_EQ(execute("ROSC:SOUR EXT;*OPC?;*TST?"), "1;1");
    EXPECT_EQ(execute("SYST:ERR?"), "20,\"External reference missing;REF IN\"");
    EXPECT_EQ(execute("ROSC:SOUR INT;:OUTP ON;:FREQ 5 GHz;*OPC?;:POW 22;*OPC?;:SYST:ERR?"),
              "1;1;50,\"Output unlevelled;22 dBm\"");
}

// The times of the last setting that was timed, in the order of the library's stages.
class TimesOfASetting : public InstrumentTest
{
protected:
    void read()
    {
        const std::string reply = execute("DIAG:TIME?");
        const std::regex stage("\"(\\w+|Scpi->Db) time (\\d+) cycles\"");
        for (std::sregex_iterator match(reply.begin(), reply.end(), stage), end; match != end; ++match)
            m_times[(*match)[1]] = std::stoll((*match)[2]);
        ASSERT_EQ(m_times.size(), 8U) << reply;
    }

    std::map<std::string, long long> m_times;
};

TEST_F(TimesOfASetting, CoverTheLineAfterTheOneThatArmsThem)
{
    EXPECT_EQ(execute("DIAG:TIME:ARM"), "");
    EXPECT_EQ(execute("DIAG:TIME:ARM"), "") << "also in a line that is timed";
    EXPECT_EQ(execute("FREQ 1.1 GHz;*OPC?;:POW -60 dBm"), "1") << "two settings: the first one counts";
    EXPECT_EQ(m_instrument.status().hardware.attenuationDecibel, 80) << "and the line waits for both";
    read();
    for (const auto &[stage, time] : m_times)
        EXPECT_GT(time, 0) << stage;
    EXPECT_GT(m_times["HW_level"], 100'000) << "nanoseconds: the board takes longer";
    EXPECT_GT(m_times["Total"], m_times["Parse"] + m_times["Database"] + m_times["HW_total2"]);
    EXPECT_GT(m_times["Total"], m_times["HW_freq"] + m_times["HW_level"]);
    const std::map<std::string, long long> kept = m_times;
    EXPECT_EQ(execute("FREQ 2 GHz;POW 0 dBm;*OPC?"), "1");
    read();
    EXPECT_EQ(m_times, kept) << "one line only";
}

TEST_F(InstrumentTest, LetsItsPlainCDriverPrint)
{
    static std::vector<std::string> lines;
    const auto receiver = [](Zorvan::hookData *data) { lines.emplace_back(data->text); };
    Zorvan::Debug::setOutputReceiver(Module::AnalogBoard, receiver);
    Zorvan::Debug::setClippingLevel(Module::AnalogBoard, Level::Error);
    attenuator driver{0};
    EXPECT_EQ(attenuator_set(&driver, 12), 2) << "10 and 5 decibels";
    EXPECT_TRUE(lines.empty()) << "nobody wants to know";
    EXPECT_EQ(attenuator_set(&driver, 1000), 4);
    Zorvan::Debug::setClippingLevel(Module::AnalogBoard, Level::Info);
    EXPECT_EQ(attenuator_set(&driver, -1), 6);
    Zorvan::Debug::setOutputReceiver(Module::AnalogBoard, nullptr);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_NE(lines[0].find("1000 dB is out of range, using 315 dB"), std::string::npos) << lines[0];
    EXPECT_NE(lines[1].find("-1 dB is out of range, using 0 dB"), std::string::npos) << lines[1];
    EXPECT_NE(lines[2].find("attenuator relays 0x00, 6 have moved"), std::string::npos) << lines[2];
}

TEST_F(InstrumentTest, TellsItsStatusWhileACommandWaits)
{
    (void)execute("FREQ 2 GHz;:FREQ:OFFS 1 GHz;:POW:OFFS -3;:OUTP ON;*OPC?;:NONSENSE");
    const Status status = m_instrument.status();
    EXPECT_EQ(status.settings[ParameterId::Frequency], 3e9);
    EXPECT_EQ(status.settings[ParameterId::Level], -33);
    EXPECT_EQ(status.hardware.frequencyHz, 2e9);
    EXPECT_EQ(status.errors, 1U);

    (void)execute("FREQ:OFFS 0;:FREQ:STAR 4 GHz;:FREQ:MODE SWE;:SWE:DWEL 100 s");
    std::thread command([this] { EXPECT_EQ(execute("SWE:EXEC;*OPC?"), "1"); });
    while (m_instrument.status().hardware.frequencyHz != 4e9)
        std::this_thread::yield();
    m_instrument.abort();
    command.join();
    EXPECT_EQ(execute("*OPC?"), "1");
    EXPECT_EQ(m_instrument.status().hardware.frequencyHz, 2e9) << "back at the carrier";
}

TEST_F(InstrumentTest, LetsNothingWaitOnceItCloses)
{
    (void)execute("FREQ:MODE SWE;:SWE:DWEL 100 s");
    m_instrument.close();
    EXPECT_EQ(execute("SWE:EXEC;*OPC?"), "1");
    EXPECT_EQ(execute("SWE:EXEC;*OPC?;:SYST:ERR?"), "1;0,\"No error\"");
}

} // namespace
