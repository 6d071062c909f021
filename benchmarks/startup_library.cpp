// A host at its start: the library is loaded and initialised, the first line is in the output file.

#include "startup.h"

#include <zorvan/debug.h>

using Zorvan::Debug;

int main()
{
    Debug::initDebug();
    Debug::enableSettings(QStringLiteral("activateFileProtocol"));
    constexpr Zorvan::moduleId kernel = 2;
    Debug::setOutputReceiver(kernel, [](Zorvan::hookData *) {}); // in place of the standard output
    Debug::println(kernel, 0, QStringLiteral("the first line"), 0);
    bench::report(bench::now());
    Debug::exitDebug();
}
