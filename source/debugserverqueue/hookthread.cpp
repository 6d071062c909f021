#include "debugserverqueue/hookthread.h"

#include "debugserverqueue/events.h"
#include "debugserverqueue/guibridge.h"
#include "debugserverqueue/librarynotice.h"
#include "platform/descriptors.h"

#include <utility>

namespace Zorvan {

namespace {

constexpr int triesBeforeSleep = 200;
constexpr int spareDescriptors = 8; // threads that start at the same time need some each

void reportNoThread()
{
    libraryNotice(QStringLiteral("++++ no thread could be started for a hook!"));
}

} // namespace

void HookWorker::run()
{
    platform::takeOver(this);
    work();
    hookRegistry().threadEnds(this);
    guibridge::post(std::make_unique<HookDoneMsg>(this));
    platform::handOver(this);
}

hookThread::hookThread(std::string key, std::string parameters, HookHandlers handlers)
    : m_key(std::move(key))
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
    // A thread of Qt that finds no descriptor for its event loop ends the process.
    if (!platform::descriptorShortage(spareDescriptors).empty() || !hookRegistry().addThread(worker)) {
        reportNoThread();
        return;
    }
    platform::handOver(worker.get());
    worker->start(); // it may have ended, and have been joined, before this returns
    if (worker->isRunning() || worker->isFinished())
        return;
    hookRegistry().dropThread(worker.get());
    reportNoThread();
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
