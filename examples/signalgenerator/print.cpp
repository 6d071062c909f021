#include "print.h"

#include <cstdarg>
#include <cstdio>

namespace SignalGenerator {

using Zorvan::Debug;

namespace {

ZORVAN_PRINTF_FORMAT(4, 0)
void printFormatted(Zorvan::moduleId module, int messageClass, int level, const char *format,
                    va_list arguments)
{
    char text[1024];
    std::vsnprintf(text, sizeof text, format, arguments);
    Debug::println(module, messageClass, QString::fromLatin1(text), level);
}

} // namespace

void print(Zorvan::moduleId module, int level, const char *format, ...)
{
    if (!Debug::isActive(module, level, MessageClass::Debug))
        return;
    va_list arguments;
    va_start(arguments, format);
    printFormatted(module, MessageClass::Debug, level, format, arguments);
    va_end(arguments);
}

void printClass(Zorvan::moduleId module, int messageClass, int level, const char *format, ...)
{
    if (!Debug::isActive(module, level, messageClass))
        return;
    va_list arguments;
    va_start(arguments, format);
    printFormatted(module, messageClass, level, format, arguments);
    va_end(arguments);
}

TimeMeasurement::TimeMeasurement(Zorvan::moduleId module, const char *what)
    : m_module(module)
    , m_what(what)
    , m_start(std::chrono::steady_clock::now())
{}

TimeMeasurement::~TimeMeasurement()
{
    const std::chrono::duration<double, std::micro> elapsed = std::chrono::steady_clock::now() - m_start;
    printClass(m_module, MessageClass::TimeMeasurement, Level::TimeMeasurement, "%s: %.1f us", m_what,
               elapsed.count());
}

} // namespace SignalGenerator
