#include "support/programdata.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <unistd.h>

namespace Zorvan::test {

namespace {

constexpr const char *dataVariable = "ZORVAN_PROGRAMDATA";
constexpr const char *ownVariable = "ZORVAN_TEST_OWN_PROGRAMDATA";

} // namespace

void restartWithOwnProgramData(char **argv)
{
    const char *const own = std::getenv(ownVariable);
    if (own && std::to_string(getpid()) == own)
        return;
    std::string folder = (std::filesystem::temp_directory_path() / "zorvan-test-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
        std::cerr << "no temporary folder " << folder << '\n';
        std::exit(1);
    }
    setenv(dataVariable, folder.c_str(), 1);
    setenv("XDG_CONFIG_HOME", folder.c_str(), 1); // file dialogs remember their folders
    setenv(ownVariable, std::to_string(getpid()).c_str(), 1); // a child of a test gets a folder of its own
    execv(std::filesystem::read_symlink("/proc/self/exe").c_str(),
          argv); // the link itself may name a checker
    std::cerr << "cannot restart " << argv[0] << '\n';
    std::exit(1);
}

void removeOwnProgramData()
{
    std::error_code ignored;
    std::filesystem::remove_all(std::getenv(dataVariable), ignored);
}

std::string libraryFolder()
{
    return std::string(std::getenv(dataVariable)) + "/Velmora";
}

std::string libraryFile(const std::string &name)
{
    return libraryFolder() + '/' + name;
}

std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void writeFile(const std::string &path, const std::string &content)
{
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::vector<std::string> linesOf(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

} // namespace Zorvan::test
