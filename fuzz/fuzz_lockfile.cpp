// The lock file of the debug daemon: other users' programs may have written it.

#include "fuzzcheck.h"
#include "lowlevelfunctions/daemonlockfile.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view content(reinterpret_cast<const char *>(data), size);
    const Zorvan::DaemonLockFile file = Zorvan::parseDaemonLockFile(content);
    require(file.parts > 0 && file.parts <= size + 1);
    require(file.isComplete() == (content.find('\n') != std::string_view::npos));
    if (!file.isComplete())
        return 0;
    const std::string again = std::to_string(file.daemonPort) + '\n' + std::to_string(file.secondPort);
    require(Zorvan::parseDaemonLockFile(again).daemonPort == file.daemonPort);
    require(Zorvan::parseDaemonLockFile(again).secondPort == file.secondPort);
    const std::string name = Zorvan::daemonInstanceName(content);
    require(name.size() <= 1023 && name.find('/') == std::string::npos);
    return 0;
}
