// What the activation of a hook costs, in the activating thread and in a thread of its own.

#include "host.h"
#include "table.h"
#include "waits.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QSemaphore>
#include <QThread>

#include <benchmark/benchmark.h>
#include <chrono>
#include <string>
#include <thread>
#include <unordered_map>

using namespace bench;
using Zorvan::Debug;

namespace {

constexpr int otherKeys = 50;
constexpr const char *directKey = "Sweep_restart";
constexpr const char *longDirectKey = "Sweep_restartFromFirstPoint"; // does not fit into a short std::string
constexpr const char *threadedKey = "Sweep_calibrate";
constexpr const char *signallingKey = "Sweep_waitFor";
constexpr const char *parameters = "all";
// A hook's thread tells the library's queue its end; the queue joins it.
constexpr auto hookDone = static_cast<QEvent::Type>(1007);

class Handler final : public Zorvan::IHookInterface
{
public:
    void hookActivated(char *key, char *text) override
    {
        benchmark::DoNotOptimize(key);
        benchmark::DoNotOptimize(text);
    }
};

/// Also tells somebody who waits for its end.
class SignallingHandler final : public Zorvan::IHookInterface
{
public:
    void hookActivated(char *key, char *text) override
    {
        benchmark::DoNotOptimize(key);
        benchmark::DoNotOptimize(text);
        m_ended.release();
    }
    void waitForEnd() { m_ended.acquire(); }

private:
    QSemaphore m_ended;
};

Handler s_handler;
SignallingHandler s_signallingHandler;

/// The least that finds a handler by its name and calls it.
class LookUp
{
public:
    LookUp()
    {
        for (int key = 0; key < otherKeys; ++key)
            m_handlers["Sweep_step" + std::to_string(key)] = &s_handler;
        m_handlers[directKey] = m_handlers[longDirectKey] = &s_handler;
    }
    void activate(const char *key, char *texts)
    {
        const auto found = m_handlers.find(key);
        if (found != m_handlers.end())
            found->second->hookActivated(texts, texts);
    }

private:
    std::unordered_map<std::string, Zorvan::IHookInterface *> m_handlers;
};

void installHooks()
{
    for (int key = 0; key < otherKeys; ++key)
        Debug::installHook(("Sweep_step" + std::to_string(key)).c_str(), &s_handler, true);
    Debug::installHook(directKey, &s_handler, true);
    Debug::installHook(longDirectKey, &s_handler, true);
    Debug::installHook(threadedKey, &s_handler, false);
    Debug::installHook(signallingKey, &s_signallingHandler, false);
}

void measureDirect()
{
    LookUp lookUp;
    std::string text = parameters;
    std::vector<Subject> subjects;
    for (const char *const key : {directKey, longDirectKey}) {
        const std::string suffix = ", key of " + std::to_string(std::string(key).size()) + " characters";
        subjects.push_back({"hash look-up and virtual call" + suffix,
                            repeated([&lookUp, &text, key] { lookUp.activate(key, text.data()); })});
        subjects.push_back(
            {"activateHooks(), direct" + suffix, repeated([key] { Debug::activateHooks(key, parameters); })});
    }
    constexpr Setup setup{5000, 200, false, false};
    const std::vector<Result> results = measure(setup, subjects);
    Table table("Direct hooks", Table::Unit::Nanoseconds);
    for (std::size_t i = 0; i < results.size(); i += 2) {
        table.row(results[i]);
        table.row(results[i + 1], results[i], 3.0);
    }
}

/// Does what the thread of a hook does.
class HandlerThread final : public QThread
{
public:
    explicit HandlerThread(std::function<void()> atEnd = {})
        : m_atEnd(std::move(atEnd))
    {}

protected:
    void run() override
    {
        std::string key = threadedKey;
        std::string text = parameters;
        s_handler.hookActivated(key.data(), text.data());
        if (m_atEnd)
            m_atEnd();
    }

private:
    const std::function<void()> m_atEnd;
};

/// In the main thread. Waits for the end of a thread.
class Ends final : public QObject
{
public:
    Ends() { QCoreApplication::instance()->installEventFilter(this); }

    /// Handles events until announce() was called, or until the queue has joined the thread of a hook.
    void waitForOne() { m_loop.exec(); }
    /// Any thread.
    void announce() { QCoreApplication::postEvent(this, new QEvent(QEvent::User)); }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == hookDone)
            m_loop.quit(); // it returns when the queue has handled the event
        return QObject::eventFilter(watched, event);
    }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        m_loop.quit();
        return true;
    }

private:
    QEventLoop m_loop;
};

/// The thread that activates is the one that joins, with the library as well as without.
std::vector<Wait> threadedActivations(Ends &ends)
{
    const auto settle = [] { std::this_thread::sleep_for(std::chrono::microseconds(200)); };
    const auto joinAtOnce = [] {
        HandlerThread thread;
        thread.start();
        thread.wait();
    };
    const auto joinWhenAnnounced = [&ends] {
        HandlerThread thread([&ends] { ends.announce(); });
        thread.start();
        ends.waitForOne();
        thread.wait();
    };
    const auto waitForHandler = [] {
        Debug::activateHooks(signallingKey, parameters);
        s_signallingHandler.waitForEnd();
    };
    // The thread of the call before is still to be joined.
    const auto joinAndSettle = [&ends, settle] {
        ends.waitForOne();
        settle();
    };
    const auto waitForJoin = [&ends] {
        Debug::activateHooks(threadedKey, parameters);
        ends.waitForOne();
    };
    return {{"QThread, started and joined", joinAtOnce, settle},
            {"QThread that posts its end, joined then", joinWhenAnnounced, settle},
            {"activateHooks(), until the handler has run", waitForHandler, settle},
            {"activateHooks(), until the thread is joined", waitForJoin, joinAndSettle}};
}

void measureThreaded()
{
    constexpr int rounds = 3000;
    Ends ends;
    const std::vector<WaitTimes> times = timeWaits(rounds, threadedActivations(ends));
    std::vector<Result> medians;
    for (const WaitTimes &each : times)
        medians.push_back(resultAt(each, 0.5));
    Table table("Hooks in a thread of their own", Table::Unit::Microseconds);
    table.row(medians[0]);
    table.row(medians[1], medians[0]);
    table.row(medians[2], medians[0], 1.3);
    table.row(medians[3], medians[0], 1.3);
    table.row(medians[3], medians[1], 1.3);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    startLibrary();
    installHooks();
    measureDirect();
    measureThreaded();
    Debug::exitDebug();
}
