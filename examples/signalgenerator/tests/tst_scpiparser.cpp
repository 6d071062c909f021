#include "errorqueue.h"
#include "scpiparser.h"

#include <gtest/gtest.h>

using namespace SignalGenerator;

namespace {

/// A parser with a few commands that put down what they were called with.
class Parser : public ::testing::Test
{
protected:
    Parser()
    {
        add("[:SOURce]:FREQuency[:CW|:FIXed]", {1, 1}, Unit::Hertz);
        add("[:SOURce]:FREQuency:STARt", {1, 1}, Unit::Hertz);
        add("[:SOURce]:FREQuency:STOP", {1, 1}, Unit::Hertz);
        add("[:SOURce]:POWer[:LEVel][:IMMediate][:AMPLitude]", {1, 1}, Unit::Dbm);
        add("[:SOURce]:LIST:DWELl", {1, 3}, Unit::Second);
        m_parser.addSetting("NAME", {1, 1}, [this](const Parameters &p) { m_calls += p[0].text + ' '; });
        m_parser.addSetting("*RST", {0, 0}, [this](const Parameters &) { m_calls += "*RST "; });
        m_parser.addQuery("*IDN", {0, 0}, [](const Parameters &) { return "me"; });
        m_parser.addQuery("FREQuency:STARt", {0, 0}, [](const Parameters &) { return "1"; });
        m_parser.addQuery("FREQuency:STOP", {0, 0}, [](const Parameters &) { return "2"; });
    }

    void add(const char *pattern, ScpiParser::ParameterCount count, Unit unit)
    {
        m_parser.addSetting(pattern, count, [this, pattern, unit](const Parameters &parameters) {
            m_calls += pattern;
            for (const Parameter &parameter : parameters)
                m_calls += '=' + std::to_string(parameter.in(unit));
            m_calls += ' ';
        });
    }

    /// What a line calls.
    std::string calls(const std::string &line)
    {
        m_calls.clear();
        m_reply = m_parser.execute(line);
        return m_calls;
    }

    /// The number of the first error of a line, 0 if there is none.
    int error(const std::string &line)
    {
        (void)calls(line);
        const int code = std::stoi(m_errors.take());
        m_errors.clear();
        return code;
    }

    ErrorQueue m_errors;
    ScpiParser m_parser{m_errors};
    std::string m_calls;
    std::string m_reply;
};

TEST_F(Parser, KnowsLongAndShortFormsAndOptionalNodes)
{
    const std::string called = "[:SOURce]:FREQuency[:CW|:FIXed]=5.000000 ";
    for (const char *line :
         {"FREQ 5", "freq 5", ":FREQ 5", "FREQuency 5", "FREQ:CW 5", "freq:fixed 5", "FREQ:FIX 5",
          "SOUR:FREQ 5", ":source:frequency:cw 5", "  FREQ\t5 \r", "SOURCE:FREQ +5", "FREQ 0.5E1"}) {
        EXPECT_EQ(calls(line), called) << line;
        EXPECT_EQ(m_errors.count(), 0u) << line;
    }
    EXPECT_EQ(calls("POW:IMM 5"), calls("POWER:LEVEL:IMMEDIATE:AMPLITUDE 5"));
    for (const char *line : {"FREQU 5", "FRE 5", "FREQ:CW:FIX 5", "FREQ:SOUR 5", "SOUR 5", "SOUR:SOUR:FREQ 5",
                             "FREQ:CW? ", "*IDN", "*RST?", "POW:AMPL:LEV 5"})
        EXPECT_EQ(error(line), ErrorCode::UndefinedHeader) << line;
}

TEST_F(Parser, ScalesSuffixes)
{
    const std::string frequency = "[:SOURce]:FREQuency[:CW|:FIXed]=";
    EXPECT_EQ(calls("FREQ 1.5 GHz"), frequency + "1500000000.000000 ");
    EXPECT_EQ(calls("FREQ 1.5e3kHz"), frequency + "1500000.000000 ");
    EXPECT_EQ(calls("FREQ .5MHZ"), frequency + "500000.000000 ");
    EXPECT_EQ(calls("POW -10.5 dBm"), "[:SOURce]:POWer[:LEVel][:IMMediate][:AMPLitude]=-10.500000 ");
    EXPECT_EQ(calls("LIST:DWEL 1 s,20ms , 30 us"), "[:SOURce]:LIST:DWELl=1.000000=0.020000=0.000030 ");
    EXPECT_EQ(error("FREQ 1 dBm"), ErrorCode::InvalidSuffix);
    EXPECT_EQ(error("POW 1 dB"), ErrorCode::InvalidSuffix);
    EXPECT_EQ(error("FREQ 1 XHz"), ErrorCode::InvalidSuffix);
}

TEST_F(Parser, ContinuesAtThePathOfTheCommandBefore)
{
    const std::string both = "[:SOURce]:FREQuency:STARt=1.000000 [:SOURce]:FREQuency:STOP=2.000000 ";
    EXPECT_EQ(calls("FREQ:STAR 1;STOP 2"), both);
    EXPECT_EQ(calls("SOUR:FREQ:STAR 1 ; STOP 2;"), both);
    EXPECT_EQ(calls("FREQ:STAR 1;:FREQ:STOP 2"), both);
    EXPECT_EQ(calls("SOUR:FREQ:STAR 1;:FREQ:STOP 2"), both);
    EXPECT_EQ(calls("FREQ:STAR 1;*RST;STOP 2"),
              "[:SOURce]:FREQuency:STARt=1.000000 *RST [:SOURce]:FREQuency:STOP=2.000000 ");
    EXPECT_EQ(error("FREQ:STAR 1;FREQ:STOP 2"), ErrorCode::UndefinedHeader);
    EXPECT_EQ(error("STOP 2"), ErrorCode::UndefinedHeader) << "the path of the line before is forgotten";
    EXPECT_EQ(calls("FREQ:STAR?;STOP?;*IDN?"), "");
    EXPECT_EQ(m_reply, "1;2;me");
}

TEST_F(Parser, ReadsStringsAndBlocks)
{
    EXPECT_EQ(calls("NAME \"a;b, 'c'\""), "a;b, 'c' ");
    EXPECT_EQ(calls("NAME 'it''s'"), "it's ");
    EXPECT_EQ(calls("NAME \"\""), " ");
    EXPECT_EQ(calls("NAME #15a;\"'b;*RST"), "a;\"'b *RST ");
    EXPECT_EQ(calls("NAME #210abcdefghij"), "abcdefghij ");
    for (const char *line : {"NAME \"a", "NAME 'a\"", "NAME 'it''s"})
        EXPECT_EQ(error(line), ErrorCode::InvalidString) << line;
    for (const char *line : {"NAME #", "NAME #0abc", "NAME #19abc", "NAME #2", "NAME #21", "NAME #2x1ab",
                             "NAME #x", "NAME #9999999999"})
        EXPECT_EQ(error(line), ErrorCode::InvalidBlock) << line;
}

TEST_F(Parser, ReportsWhatIsWrong)
{
    const std::pair<const char *, int> rows[] = {
        {"", ErrorCode::NoError},
        {" ; ;; ", ErrorCode::NoError},
        {"FREQ", ErrorCode::MissingParameter},
        {"FREQ 1,2", ErrorCode::ParameterNotAllowed},
        {"*IDN? 1", ErrorCode::ParameterNotAllowed},
        {"FREQ ON", ErrorCode::DataType},
        {"FREQ '1'", ErrorCode::DataType},
        {"FREQ 1,", ErrorCode::Syntax},
        {"FREQ ,1", ErrorCode::Syntax},
        {"FREQ 1 2", ErrorCode::Syntax},
        {"FREQ=1", ErrorCode::Syntax},
        {"FREQ: 1", ErrorCode::Syntax},
        {"FREQ::CW 1", ErrorCode::Syntax},
        {"*", ErrorCode::Syntax},
        {":", ErrorCode::Syntax},
        {"?", ErrorCode::Syntax},
        {"\xE9 1", ErrorCode::Syntax},
        {"FREQ +", ErrorCode::Syntax},
        {"FREQ +-1", ErrorCode::Syntax},
        {"FREQ -inf", ErrorCode::Syntax},
        {"FREQ -nan(1)", ErrorCode::Syntax},
        {"FREQ 1e999", ErrorCode::ExponentTooLarge},
    };
    for (const auto &[line, code] : rows)
        EXPECT_EQ(error(line), code) << line;
}

TEST_F(Parser, KeepsWhatCameBeforeASyntaxErrorAndSkipsTheRest)
{
    EXPECT_EQ(calls("*RST;FREQ 1,;*RST"), "*RST ");
    EXPECT_EQ(m_errors.count(), 1u);
    m_parser.addSetting("FAIL", {0, 0},
                        [](const Parameters &) { throw ScpiError(ErrorCode::OutOfRange, ""); });
    EXPECT_EQ(calls("*RST;FAIL;*RST"), "*RST *RST ") << "only command errors end the line";
}

TEST(ErrorQueue, TurnsTheLastEntryIntoAnOverflow)
{
    ErrorQueue errors;
    for (std::size_t i = 0; i < ErrorQueue::capacity + 2; ++i)
        errors.push(ErrorCode::Syntax, "a \"quoted\" " + std::to_string(i));
    EXPECT_EQ(errors.count(), ErrorQueue::capacity);
    EXPECT_EQ(errors.take(), "-102,\"Syntax error;a 'quoted' 0\"");
    const std::string all = errors.takeAll();
    EXPECT_EQ(all.substr(all.rfind(",-") + 1), "-350,\"Queue overflow\"");
    EXPECT_EQ(errors.take(), "0,\"No error\"");
}

} // namespace
