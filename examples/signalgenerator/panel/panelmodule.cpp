#include "panel/panelmodule.h"

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

// Each description is a piece of the line header, blanks included.
const char *classes[] = {"<debug message>, ", nullptr};
const char *levels[] = {"<      Report>: ", "<     Warning>: ", "<        Info>: ", nullptr};

} // namespace

Zorvan::moduleId createPanelModule()
{
    const Zorvan::moduleId module = Debug::createModule("SG4000-Panel", "Panel");
    Debug::setMessageClassDescriptions(module, -1, classes);
    Debug::setMessageLevelDescriptions(module, -1, levels);
    return module;
}

} // namespace SignalGenerator
