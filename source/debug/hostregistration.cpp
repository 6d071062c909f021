// Members of the facade that keep what the host hands in.

#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"

namespace Zorvan {

void Debug::setUtilityCallbackHandler(IUtilityInterface *handler)
{
    host::setUtilityHandler(handler);
}

void Debug::setThreadCallbackHandler(IThraedInterface *handler)
{
    host::setThreadHandler(handler);
}

void Debug::installKeyHandler(IKeyInterface *handler)
{
    host::setKeyHandler(handler);
}

IKeyInterface *Debug::getKeyboardHandler()
{
    return host::keyHandler();
}

void Debug::installMessageBoxHandler(IMessageBoxInterface *handler)
{
    host::setMessageBoxHandler(handler);
}

void Debug::setExtWindow(DebugWindow *window)
{
    guibridge::setExternalWindow(window);
}

} // namespace Zorvan
