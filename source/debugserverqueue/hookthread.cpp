#include "debugserverqueue/hookthread.h"

#include "debugserverqueue/events.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/librarynotice.h"
#include "platform/descriptors.h"

#include <utility>

namespace Zorvan {

namespace {

constexpr int triesBeforeSleep = 200;
constexpr int spareDescriptors = 2;
constexpr int descriptorsOfThread = 2; // for its event loop, which Qt makes when the thread starts

/// A thread of Qt that finds no descriptor ends the process.
bool enoughDescriptors()
{
    const int wanted = spareDescriptors + descriptorsOfThread * hookRegistry().startingThreads();
    return platform::descriptorShortage(wanted).empty();
}

bool startThread(HookWorker &worker)
{
    if (!enoughDescriptors())
        return false;
    platform::handOver(&worker);
    worker.start(); // it may have ended, and have been joined, before this returns
    return worker.isRunning() || worker.isFinished();
}

} // namespace

void HookWorker::run()
{
    platform::takeOver(this);
    hookRegistry().threadBegins(this);
    work();
    hookRegistry().threadEnds(this);
    guibridge::post(std::make_unique<HookDoneMsg>(this, m_window == Window::Follows));
    platform::handOver(this);
}

hookThread::hookThread(std::string key, std::string parameters, HookHandlers handlers, Window window)
    : HookWorker(window)
    , m_key(std::move(key))
    , m_parameters(std::move(parameters))
    , m_handlers(std::move(handlers))
{}

void hookThread::work()
{
    callHandlers(m_handlers, m_key, m_parameters);
    m_handlers.clear(); // adapters that were removed meanwhile end here, not with the thread object
}

void startHookWorker(const std::shared_ptr<HookWorker> &worker)
{
    if (!guibridge::queueExists() || !guibridge::eventLoopRunning()) {
        for (const std::shared_ptr<QThread> &ended : hookRegistry().takeEndedThreads())
            joinHookWorker(*ended);
    }
    const bool windowFollows = worker->window() == HookWorker::Window::Follows;
    if (windowFollows)
        guibridge::announceHookStart();
    if (hookRegistry().addThread(worker)) {
        if (startThread(*worker))
            return;
        hookRegistry().dropThread(worker.get());
    }
    guibridge::post(std::make_unique<HookDoneMsg>(nullptr, windowFollows));
    libraryNotice(QStringLiteral("++++ no thread could be started for a hook!"));
}

// The thread has only a few steps to go: to sleep and be woken would take longer than they do.
void joinHookWorker(QThread &worker)
{
    for (int tries = 0; tries < triesBeforeSleep && !worker.isFinished(); ++tries)
        QThread::yieldCurrentThread();
    worker.wait();
    platform::takeOver(&worker);
}

} // namespace Zorvan
