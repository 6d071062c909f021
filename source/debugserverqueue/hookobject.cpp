#include "debugserverqueue/hookobject.h"

namespace Zorvan {

HookObject::HookObject(Function function)
    : m_function(function)
{}

HookObject::HookObject(QObject *object, Method method)
    : m_method(method)
    , m_object(object)
    , m_guard(object)
{}

void HookObject::hookActivated(char *key, char *parameters)
{
    if (m_function != nullptr)
        m_function(key, parameters);
    else if (QObject *const object = m_guard.data())
        (object->*m_method)(key, parameters);
}

bool HookObject::isFor(Function function) const
{
    return m_function != nullptr && (function == nullptr || function == m_function);
}

bool HookObject::isFor(const QObject *object, Method method) const
{
    return m_method != nullptr && (object == nullptr || object == m_object)
        && (method == nullptr || method == m_method);
}

} // namespace Zorvan
