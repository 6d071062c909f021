#include "panel/selftest.h"

#include "panel/remotecontrol.h"

namespace SignalGenerator {

namespace {

constexpr const char *frequencies[] = {"9 kHz", "10 MHz", "433.92 MHz", "2.4 GHz", "6 GHz"};

bool locksAt(const std::string &frequency, RemoteControl &remote)
{
    const std::string reply = remote.ask("FREQ " + frequency + ";*OPC?;:DIAG:HARD?");
    return reply.rfind("1;LOCKED,", 0) == 0;
}

} // namespace

SelfTestResult runSelfTest(RemoteControl &remote)
{
    const std::string former = remote.ask("ABOR;:FREQ:OFFS?;:FREQ?;:OUTP?");
    const std::size_t first = former.find(';');
    const std::size_t second = former.find(';', first + 1);
    remote.send("OUTP OFF;:FREQ:OFFS 0");
    SelfTestResult result;
    for (const char *frequency : frequencies) {
        const bool locks = locksAt(frequency, remote);
        result.passed = result.passed && locks;
        result.report += std::string(result.report.empty() ? "" : "\n") + frequency
            + (locks ? ": locked" : ": NOT LOCKED");
    }
    (void)remote.ask("FREQ:OFFS " + former.substr(0, first) + ";:FREQ "
                     + former.substr(first + 1, second - first - 1) + ";:OUTP " + former.substr(second + 1)
                     + ";*OPC?");
    return result;
}

} // namespace SignalGenerator
