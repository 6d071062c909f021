#include "host.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

using Zorvan::Debug;

namespace bench {

namespace {

class Host final : public Zorvan::IUtilityInterface, public Zorvan::IThraedInterface
{
public:
    bool messageBoxesAllowed() override { return false; }
    double counterFrequency() override { return 1e9; }
    quint64 readCounter() override
    {
        return static_cast<quint64>(std::chrono::steady_clock::now().time_since_epoch().count());
    }
    const char *threadName() override { return "measuring"; }
};

Host s_host;

std::string programData()
{
    const char *const folder = std::getenv("ZORVAN_PROGRAMDATA");
    if (folder == nullptr || *folder == '\0') {
        std::fputs("Set ZORVAN_PROGRAMDATA to a folder for the log files, or use benchmarks/run.\n", stderr);
        std::exit(2);
    }
    return folder;
}

} // namespace

void startLibrary()
{
    programData();
    Debug::setUtilityCallbackHandler(&s_host);
    Debug::setThreadCallbackHandler(&s_host);
    Debug::initDebug();
}

void describeModule(Zorvan::moduleId module)
{
    const char *levels[] = {"<Critical>: ", "<   Error>: ", "< Warning>: ", "<    Info>: "};
    const char *classes[] = {"<debug message>, ", "<  time meas  >, "};
    Debug::setMessageLevelDescriptions(module, 4, levels);
    Debug::setMessageClassDescriptions(module, 2, classes);
    Debug::enableLevel(module, QStringLiteral("full"));
    Debug::disableMessageClassType(module, disabledClass);
}

Zorvan::moduleId makeModule(const char *name)
{
    const Zorvan::moduleId module = Debug::createModule(name, name);
    describeModule(module);
    return module;
}

double makeModules(Zorvan::moduleId last, int count)
{
    const auto start = std::chrono::steady_clock::now();
    while (last + 1 < count) {
        last = Debug::createModule("Measured", "Measured");
        Debug::isActive(last, 0, enabledClass);
    }
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

void ignoreLine(Zorvan::hookData * /*data*/) {}

FILE *droppingStream()
{
    cookie_io_functions_t functions{};
    functions.write = [](void *, const char *, std::size_t size) { return static_cast<ssize_t>(size); };
    return fopencookie(nullptr, "w", functions);
}

void setFlags(const char *words)
{
    Debug::enableSettings(QString::fromLatin1(words));
}

std::string dataFile(const std::string &name)
{
    return programData() + "/Velmora/" + name;
}

void writeRaw(const std::string &path, const std::string &bytes)
{
    const int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    const bool written = write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
    close(file);
    if (!written)
        std::abort();
}

std::string lastLine(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::string last;
    for (std::string line; std::getline(file, line);)
        last = line;
    return last + '\n';
}

} // namespace bench
