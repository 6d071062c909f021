#include "support/childprocess.h"

#include <cstdio>
#include <sys/wait.h>

namespace Zorvan::test {

ChildResult runChild(const std::string &command)
{
    ChildResult result;
    std::FILE *const pipe = popen(("exec env " + command).c_str(), "r");
    if (pipe == nullptr)
        return result;
    char buffer[4096];
    for (std::size_t length = 0; (length = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        result.output.append(buffer, length);
    const int status = pclose(pipe);
    if (WIFEXITED(status))
        result.exitCode = WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        result.signal = WTERMSIG(status);
    return result;
}

} // namespace Zorvan::test
