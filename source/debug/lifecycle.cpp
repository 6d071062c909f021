// Start and stop of the library.

#include "debug/displayflags.h"
#include "debug/moduletable.h"
#include "debug/outputfile.h"
#include "debug/outputgate.h"
#include "debug/qtmessages.h"
#include "debug/receivers.h"
#include "debug/settings.h"
#include "debugserverqueue/guibridge.h"
#include "host/hosthandlers.h"
#include "host/silentmessagebox.h"

#include <QCoreApplication>

namespace Zorvan {

namespace {

const char *defaultLevels[] = {
    "<+ CRITICAL +>: ", "<       Error>: ", "<     Warning>: ", "<        Info>: ", "<   Time Meas>: "};
const char *defaultClasses[] = {"<debug message>, ", "<  time meas  >, "};

std::atomic<int> s_users{0};

/// Runs when the application object is destroyed: the library ends with it, whatever the balance of calls.
void endWithApplication()
{
    s_users.store(1);
    Debug::exitDebug();
    guibridge::applicationGone();
}

void buildModules()
{
    const StartScope starting;
    checkConfig();
    for (moduleId id = 0; id < moduleTable().capacity(); ++id) {
        Debug::setMessageLevelDescriptions(id, static_cast<int>(std::size(defaultLevels)), defaultLevels);
        Debug::setMessageClassDescriptions(id, static_cast<int>(std::size(defaultClasses)), defaultClasses);
    }
}

void silenceBoxesIfForbidden()
{
    IUtilityInterface *const handler = host::utilityHandler();
    silentMessageBox *const silent = silentMessageBox::instance();
    if (handler && !handler->messageBoxesAllowed())
        host::setMessageBoxHandler(silent);
    else if (host::messageBoxHandler() == silent) // of an earlier start
        host::setMessageBoxHandler(nullptr);
}

/// Takes back one user. True if it was the last one; surplus calls change nothing.
bool wasLastUser()
{
    int users = s_users.load();
    while (users > 0 && !s_users.compare_exchange_weak(users, users - 1)) {}
    return users == 1;
}

void releaseTables()
{
    const TableLock guard;
    moduleTable().release();
    outputFile().beginRun();
    displayflags::reset();
    setupOutputEnabled(true); // as before the first start
}

} // namespace

void Debug::initDebug()
{
    // Anew at each call: an application that has ended took the registration with it.
    qRemovePostRoutine(endWithApplication);
    qAddPostRoutine(endWithApplication);
    if (s_users.fetch_add(1) != 0) {
        guibridge::usingQt(); // connects the library with an application that has come up meanwhile
        return;
    }
    silenceBoxesIfForbidden();
    buildModules();
    installQtMessageHandler();
    readStartSettings();
    setupOutputEnabled(true);
    guibridge::usingQt();
}

void Debug::exitDebug()
{
    if (hasGlobalReceiver() || !wasLastUser())
        return;
    qRemovePostRoutine(endWithApplication);
    releaseTables();
    exitDebugDaemon();
    if (!guibridge::qtApplicationRuns())
        guibridge::applicationGone();
}

} // namespace Zorvan
