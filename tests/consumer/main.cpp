#include <zorvan/debug.h>

int main()
{
    using Zorvan::Debug;
    constexpr Zorvan::moduleId kernel = 2; // "KLV-Kernel", one of the modules that are there from the start

    Debug::initDebug();
    Debug::enableSettings(QStringLiteral("displayModuleName"));
    Debug::setClippingLevel(kernel, 2); // critical messages, errors and warnings
    Debug::println(kernel, 0, QStringLiteral("reference oscillator is still warming up"), 2);
    Debug::println(kernel, 0, QStringLiteral("sweep point 17 of 40"), 3); // an info: above the clipping level
    Debug::enableLevel(kernel, QStringLiteral("info"));
    Debug::println(kernel, 0, QStringLiteral("sweep point 18 of 40"), 3);
    Debug::exitDebug();
}
