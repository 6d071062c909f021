#pragma once

#include "debugserverqueue/hookregistry.h"

#include <QThread>

namespace Zorvan {

/// A thread on behalf of a hook: does its work, then has itself joined. See startHookWorker().
class HookWorker : public QThread
{
public:
    enum class Window {
        Unaware,
        Follows, ///< the debug window starts no hook meanwhile
    };

    explicit HookWorker(Window window)
        : m_window(window)
    {}
    [[nodiscard]] Window window() const { return m_window; }

protected:
    virtual void work() = 0;

private:
    void run() final;

    const Window m_window;
};

/// Runs the handlers of one activation.
class hookThread final : public HookWorker
{
public:
    hookThread(std::string key, std::string parameters, HookHandlers handlers, Window window);

protected:
    void work() override;

private:
    const std::string m_key;
    const std::string m_parameters;
    HookHandlers m_handlers;
};

/// Ends at once; \a text names it in debuggers.
class assertThread final : public HookWorker
{
public:
    explicit assertThread(const QString &text)
        : HookWorker(Window::Unaware)
    {
        setObjectName(text);
    }

protected:
    void work() override {}
};

/// Starts a worker and returns. At its end it posts a HookDoneMsg to the queue, which calls hooks::reap() in
/// the GUI thread; one that finds no queue is joined by the next start or by hooks::endThreads().
void startHookWorker(const std::shared_ptr<HookWorker> &worker);

/// Joins a thread that has ended and was taken out of the registry.
void joinHookWorker(QThread &worker);

} // namespace Zorvan
