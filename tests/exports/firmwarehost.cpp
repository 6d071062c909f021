// The host around the module in C.

#include "exports/firmware.h"
#include "support/maphost.h"

#include <zorvan/exports.h>

#include <thread>

namespace {

class Reports : public Zorvan::IAnalysisOutputInterface
{
public:
    void textOutput(const char *, int, const char *) override { ++texts; }
    void summary(int, qint64, qint64, qint64, quint64, quint64) override {}
    void tableRow(int, const char *, quint64, int, quint64, qint64, qint64) override { ++rows; }
    void tableComplete() override {}

    int texts = 0;
    int rows = 0;
};

class Methods : public Zorvan::IAnalysisSummaryInterface
{
public:
    void methodInformation(const char *, int, const char *) override { ++count; }

    int count = 0;
};

class SteppingHost : public Zorvan::test::MapHost
{
public:
    quint64 readCounter() override { return counter += 100; }
};

SteppingHost *s_host = nullptr;
Reports s_reports;

} // namespace

void startHost()
{
    s_host = new SteppingHost;
    Zorvan::Debug::initDebug();
    installanalysisMessageHandler(&s_reports);
}

void stopHost()
{
    installanalysisMessageHandler(nullptr);
    Zorvan::Debug::exitDebug();
    delete s_host;
}

int reportedTexts()
{
    return s_reports.texts;
}

int reportedRows()
{
    return s_reports.rows;
}

int methodsToldToTheHost()
{
    Methods methods;
    getInstruemntationInformations(&methods);
    return methods.count;
}

void waitMoment()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

int main()
{
    return useEveryExport();
}
