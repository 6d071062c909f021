#pragma once

#include <zorvan/debug.h>

#include <QObject>
#include <QPointer>

namespace Zorvan {

/// Makes a plain function, or a member function of an object, a handler of hooks.
///
/// Any thread; immutable. An object that is destroyed is not called any more. One that is destroyed by
/// another thread in the middle of a call is the host's fault: to wait for the call would block, say, a GUI
/// thread whose answer the call awaits.
class HookObject final : public QObject, public IHookInterface
{
public:
    using Function = void (*)(char *, char *);
    using Method = void (QObject::*)(char *, char *);

    explicit HookObject(Function function);
    HookObject(QObject *object, Method method);

    void hookActivated(char *key, char *parameters) override;

    /// Null stands for any function. An adapter of a member function never matches.
    [[nodiscard]] bool isFor(Function function) const;
    /// Null stands for any object or any member function. An object keeps its identity when it is destroyed.
    [[nodiscard]] bool isFor(const QObject *object, Method method) const;
    /// False once there is nothing left to call.
    [[nodiscard]] bool isAlive() const { return m_function != nullptr || !m_guard.isNull(); }

private:
    const Function m_function = nullptr;
    const Method m_method = nullptr;
    const QObject *const m_object = nullptr; // only compared
    const QPointer<QObject> m_guard;
};

} // namespace Zorvan
