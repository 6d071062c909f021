// The process that tests look at from outside. Its arguments are commands, carried out in turn:
//   get                        prints the ten properties, '-' for one that is not set
//   set ID VALUE
//   log TAG WRITER COUNT       COUNT numbered lines
// With HELPER_STATICS in the environment a static object logs in its constructor and destructor.

#include "lowlevelfunctions/loglines.h"

#include <zorvan/debug.h>

#include <cstdio>
#include <cstdlib>

namespace {

struct Witness
{
    Witness()
    {
        if (asked)
            Zorvan::gyxLog("helper.cpp", 1, "constructor\n");
    }
    ~Witness()
    {
        if (!asked)
            return;
        Zorvan::gyxLog("helper.cpp", 2, "destructor %d\n", 42);
        Zorvan::gyxLog("Tag", nullptr, 0, "100%s%n%", nullptr);
        Zorvan::gyxLog(nullptr, 0, "%05000d", 7);
    }
    const bool asked = std::getenv("HELPER_STATICS") != nullptr;
};

// Where the library's objects are in the same program, this one is built before and destroyed after them.
__attribute__((init_priority(101))) const Witness s_witness;

} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string command = argv[i];
        for (int id = 0; command == "get" && id < 10; ++id) {
            const int value = Zorvan::getLowlevelIntegerProperty(id, 1);
            const bool isSet = Zorvan::getLowlevelIntegerProperty(id, 2) == value;
            std::printf("%s%s", id > 0 ? " " : "", isSet ? std::to_string(value).c_str() : "-");
        }
        if (command == "set" && i + 2 < argc) {
            Zorvan::setLowlevelIntegerProperty(std::atoi(argv[i + 1]), std::atoi(argv[i + 2]));
            i += 2;
        } else if (command == "log" && i + 3 < argc) {
            for (int number = 0; number < std::atoi(argv[i + 3]); ++number) {
                const std::string line = Zorvan::test::sequenceLine(argv[i + 2], number) + '\n';
                Zorvan::gyxLog(argv[i + 1], nullptr, 0, line.c_str(), nullptr);
            }
            i += 3;
        }
    }
    return 0;
}
