// Start and stop of the library.

#include "debug/displayflags.h"
#include "debug/exitquestion.h"
#include "debug/moduletable.h"
#include "debug/outputfile.h"
#include "debug/outputgate.h"
#include "debug/qtmessages.h"
#include "debug/settings.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/hooks.h"
#include "host/hosthandlers.h"
#include "host/outputswitch.h"
#include "host/silentmessagebox.h"

namespace Zorvan {

namespace {

const char *defaultLevels[] = {
    "<+ CRITICAL +>: ", "<       Error>: ", "<     Warning>: ", "<        Info>: ", "<   Time Meas>: "};
const char *defaultClasses[] = {"<debug message>, ", "<  time meas  >, "};

std::atomic<int> s_users{0};
std::atomic<bool> s_endIsUnfinished{false}; // the last user has gone, the modules are still there

/// Runs when the application object is destroyed: the library ends with it, whatever the balance of calls.
void endWithApplication()
{
    s_users.store(1);
    Debug::exitDebug();
}

void buildModules()
{
    const ChangeScope change;
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

/// What is left of an end, with the table locked. The next start does it if it comes first.
void finishEnd() ZORVAN_REQUIRES(moduleTable().lock())
{
    if (!s_endIsUnfinished.exchange(false))
        return;
    guibridge::setEndHandler(nullptr);
    hooks::release();
    moduleTable().release();
    outputFile().beginRun();
    displayflags::reset();
    setupOutputEnabled(true); // as before the first start
}

/// Counts one more user and builds the modules for the first one, which gets true. Whoever comes second
/// meanwhile waits until there are modules.
bool addUser() ZORVAN_REQUIRES(moduleTable().lock())
{
    const bool isFirst = s_users.fetch_add(1) == 0;
    if (isFirst)
        finishEnd();
    host::installOutputSwitch(setupOutputEnabled);
    guibridge::setEndHandler(endWithApplication);
    guibridge::watchApplicationEnd();
    if (!isFirst)
        return false;
    silenceBoxesIfForbidden();
    buildModules();
    return true;
}

/// Takes back one user. True if it was the last one. Surplus calls change nothing.
bool removeLastUser()
{
    const TableLock guard;
    int users = s_users.load();
    while (users > 0 && !s_users.compare_exchange_weak(users, users - 1)) {}
    if (users == 1) {
        s_endIsUnfinished.store(true);
        TableState::countEnd();
    }
    return users == 1;
}

void releaseModules()
{
    const TableLock guard;
    finishEnd();
}

/// From the moment the road is closed until the modules are gone, lines go to the standard output; hooks that
/// still run may print and are waited for, so the table stays unlocked.
void endLibrary()
{
    offerToSaveWindowText();
    guibridge::Ending ending;
    ending.deleteQueue();
    releaseModules();
}

/// With the table locked: the lines of other threads wait until it is known where they go.
void startOrCount()
{
    const TableLock guard;
    if (!addUser())
        return;
    installQtMessageHandler();
    readStartSettings();
    setupOutputEnabled(true);
}

} // namespace

void Debug::initDebug()
{
    startOrCount();
    guibridge::usingQt(); // a later call connects the library with an application that has come up meanwhile
}

void Debug::exitDebug()
{
    if (TableState::hasGlobalReceiver() || !removeLastUser())
        return;
    endLibrary();
    exitDebugDaemon();
    if (!guibridge::qtApplicationRuns())
        guibridge::applicationGone();
}

} // namespace Zorvan
