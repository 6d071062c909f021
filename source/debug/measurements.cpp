#include <zorvan/debug.h>

namespace Zorvan {

ressourceInfo *Debug::createMeasurement(moduleId, int, int)
{
    return nullptr;
}
void Debug::startMeasurement(ressourceInfo *) {}
void Debug::stopMeasurement(ressourceInfo *) {}
void Debug::dumpRessources(ressourceInfo *) {}
void Debug::timeMeas4HwSetting(enumTimeMeas, bool, bool) {}
void Debug::gettimeMeas4HwSetting(QString &, int) {}
void Debug::enableSCPItimeMeas4HwSetting() {}

} // namespace Zorvan
