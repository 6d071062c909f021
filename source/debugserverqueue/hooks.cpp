// The facade's hook calls, and what the queue and the end of the library need of the hooks.

#include "debugserverqueue/hooks.h"

#include "debugserverqueue/builtinhooks.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/hookregistry.h"
#include "debugserverqueue/hookthread.h"
#include "debugserverqueue/librarynotice.h"
#include "host/hookkeys.h"
#include "host/tablestate.h"
#include "platform/process.h"

#include <algorithm>
#include <array>

namespace Zorvan {

namespace {

using namespace std::chrono_literals;

constexpr auto endLimit = 2s;

/// Announce changes of the configuration; not for users to choose from.
constexpr std::array notificationKeys = {
    "DebugServerEnabledLevelChangedHook", "DebugServerEnabledClassesChangedHook",
    "DebugServerSettingsChangedHook",     "DebugServerFilterChangedHook",
    "DebugServerWindowClosedHook",        "DebugServerMakeDefaultHook",
};

struct LibraryHook
{
    const char *key;
    bool direct;
};

constexpr LibraryHook libraryHooks[] = {
    {"DebugServerEnabledLevelChangedHook", false},
    {"DebugServerEnabledClassesChangedHook", false},
    {"DebugServerSettingsChangedHook", false},
    {"DebugServerFilterChangedHook", false},
    {"DebugServer_newUI", true},
    {"DebugServer_testMsgBox", false},
    {"DebugServer_testMessage", true},
    {"DebugServer_allowRemote", false},
    {"DebugServer_testAssert", false},
};

/// Never destroyed: a hook thread may come to it late.
class LibraryHandler final : public IHookInterface
{
public:
    void hookActivated(char *key, char *parameters) override { runBuiltinHook(key, parameters); }
};

IHookInterface *libraryHandler()
{
    static auto *const handler = new LibraryHandler;
    return handler;
}

bool isNotificationKey(const std::string &key)
{
    return std::any_of(notificationKeys.begin(), notificationKeys.end(),
                       [&key](const char *each) { return key == each; });
}

/// The array that the calling thread got last.
std::unique_ptr<QString[]> &listedKeys()
{
    thread_local std::unique_ptr<QString[]> keys;
    return keys;
}

void installAdapter(const char *key, std::shared_ptr<HookObject> adapter,
                    const HookRegistry::AdapterFilter &isSame)
{
    hookRegistry().installAdapter(key, std::move(adapter), isSame);
    guibridge::requestRedraw();
}

void removeAdapters(const char *key, const HookRegistry::AdapterFilter &filter)
{
    hookRegistry().removeAdapters(key, filter);
    guibridge::requestRedraw();
}

void holdRegistry() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    hookRegistry().holdForFork();
}

void releaseRegistry() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    hookRegistry().releaseInParent();
}

void releaseRegistryInChild() ZORVAN_NO_THREAD_SAFETY_ANALYSIS
{
    hookRegistry().releaseInChild();
}

} // namespace

namespace hooks {

void installLibraryHooks()
{
    for (const LibraryHook &hook : libraryHooks)
        hookRegistry().install(hook.key, HookHandler(libraryHandler()), hook.direct);
}

void removeLibraryHooks()
{
    hookRegistry().removeFromAllKeys(libraryHandler());
}

void reap(QThread *thread)
{
    if (const std::shared_ptr<QThread> ended = hookRegistry().takeEndedThread(thread))
        joinHookWorker(*ended);
}

void endThreads()
{
    for (const std::shared_ptr<QThread> &thread : hookRegistry().threads())
        thread->requestInterruption();
    hookRegistry().waitForThreads(endLimit);
    for (const std::shared_ptr<QThread> &ended : hookRegistry().takeEndedThreads())
        joinHookWorker(*ended);
}

void release()
{
    hookRegistry().removeAllKeys();
}

void registerForkHandlers()
{
    static const bool registered = [] {
        hookRegistry(); // exists from now on: helgrind does not see how threads share its first use
        platform::aroundFork(holdRegistry, releaseRegistry, releaseRegistryInChild);
        return true;
    }();
    static_cast<void>(registered);
}

} // namespace hooks

void Debug::installHook(const char *key, IHookInterface *handler, bool direct)
{
    if (key == nullptr || handler == nullptr)
        return;
    hookRegistry().install(key, HookHandler(handler), direct);
    guibridge::requestRedraw();
}

void Debug::removeHook(const char *key, IHookInterface *handler)
{
    if (key == nullptr || handler == nullptr)
        return;
    hookRegistry().remove(key, handler);
    guibridge::requestRedraw();
}

void Debug::installCHookHandler(const char *key, void (*function)(char *, char *))
{
    if (key == nullptr || function == nullptr || TableState::hasGlobalReceiver())
        return;
    installAdapter(key, std::make_shared<HookObject>(function),
                   [function](const HookObject &adapter) { return adapter.isFor(function); });
}

void Debug::removeCHookHandler(const char *key, void (*function)(char *, char *))
{
    if (key == nullptr)
        return;
    removeAdapters(key, [function](const HookObject &adapter) { return adapter.isFor(function); });
}

void Debug::installCppHookHandler(const char *key, QObject *object, void (QObject::*method)(char *, char *))
{
    if (key == nullptr || object == nullptr || method == nullptr || TableState::hasGlobalReceiver())
        return;
    libraryNotice(QLatin1String("method Debug::installCppHookHandler(\"") + QLatin1String(key)
                  + QLatin1String("\") may become obsolete in a few versions. "
                                  "Please use Debug::installHook() instead."));
    installAdapter(key, std::make_shared<HookObject>(object, method),
                   [object, method](const HookObject &adapter) { return adapter.isFor(object, method); });
}

void Debug::removeCppHookHandler(const char *key, QObject *object, void (QObject::*method)(char *, char *))
{
    if (key == nullptr)
        return;
    removeAdapters(key,
                   [object, method](const HookObject &adapter) { return adapter.isFor(object, method); });
}

void Debug::activateHooks(const char *key, const char *parameters)
{
    if (key == nullptr || TableState::hasGlobalReceiver())
        return;
    HookRegistry::Key found = hookRegistry().find(key);
    if (found.handlers.empty())
        return;
    if (parameters == nullptr)
        parameters = "";
    if (found.direct)
        callHandlers(found.handlers, key, parameters);
    else
        startHookWorker(std::make_shared<hookThread>(key, parameters, std::move(found.handlers),
                                                     isNotificationKey(key) ? HookWorker::Window::Unaware
                                                                            : HookWorker::Window::Follows));
}

QStringList host::hookKeys()
{
    QStringList listed;
    if (!TableState::exists())
        return listed;
    for (const std::string &key : hookRegistry().sortedKeys()) {
        if (!isNotificationKey(key))
            listed.append(QLatin1String(key.c_str()));
    }
    return listed;
}

QString *Debug::getHooks(int &count)
{
    count = 0;
    if (!TableState::exists())
        return nullptr;
    const QStringList keys = host::hookKeys();
    count = static_cast<int>(keys.size());
    std::unique_ptr<QString[]> &listed = listedKeys();
    listed = std::make_unique<QString[]>(static_cast<std::size_t>(count));
    std::copy(keys.begin(), keys.end(), listed.get());
    return listed.get();
}

} // namespace Zorvan
