#pragma once

/// \file
/// Short forms that add the source position and make the cheap call the easy one. Part of <zorvan/debug.h>,
/// which includes it; all of them are optional.
///
/// Each is one statement, also in an if without braces, in a template, a lambda or a header, and evaluates
/// each of its arguments at most once. Any thread; none of them takes a lock of its own. Texts are QString,
/// or narrow ones in Latin-1. A comma in a module, a level or a condition wants parentheses around it.

#include <zorvan/debug.h>

#include <atomic>
#include <chrono>
#include <cstdarg>
#include <cstdint>

/// \name Instrumentation
/// @{

/// Measures the rest of the function, under its name.
///
///     void Hardware::settle()
///     {   ZORVAN_TIME_METHOD();
#define ZORVAN_TIME_METHOD() ZORVAN_TIME_SCOPE(__func__)

/// Measures the rest of the scope under a name, which has to be a literal. One of them to a line.
///
///     for (const Step &step : steps) {
///         ZORVAN_TIME_SCOPE("one step");
#define ZORVAN_TIME_SCOPE(name)                                                                              \
    const ::Zorvan::methodTracker ZORVAN_DETAIL_NAME(zorvanTracker, __COUNTER__)(__FILE__, __LINE__, name)

/// xmalloc(), xcalloc(), xrealloc() and xfree() with the source position.
///
///     void *const block = ZORVAN_MALLOC(200);
///     ZORVAN_FREE(block);
#define ZORVAN_MALLOC(size) ::xmalloc(size, __FILE__, __LINE__)
/// One size, no element count.
///
///     void *const zeros = ZORVAN_CALLOC(count * sizeof(Step));
///     ZORVAN_FREE(zeros);
#define ZORVAN_CALLOC(size) ::xcalloc(size, __FILE__, __LINE__)
/// Null: no memory, and the old block stays.
///
///     if (void *const longer = ZORVAN_REALLOC(block, 400))
///         block = longer;
#define ZORVAN_REALLOC(block, size) ::xrealloc(block, size, __FILE__, __LINE__)
/// Null does nothing.
///
///     void *const block = ZORVAN_MALLOC(200);
///     ZORVAN_FREE(block);
#define ZORVAN_FREE(block) ::xfree(block, __FILE__, __LINE__)
/// @}

/// \name Messages
/// Each asks Debug::isActive() first and builds its text only for a message that is printed: the text costs
/// many times the question.
/// @{

/// Messages above this level are compiled out: their text is compiled, but never evaluated, and an optimising
/// compiler leaves nothing of it if the level is a constant. Define it before including the header.
///
///     #define ZORVAN_HIGHEST_LEVEL 3
///     #include <zorvan/debug.h>
#ifndef ZORVAN_HIGHEST_LEVEL
#define ZORVAN_HIGHEST_LEVEL 0x7FFFFFFF
#endif

/// Debug::println() for a text that is built only if it is wanted.
///
///     if (locked)
///         ZORVAN_PRINT(kernel, synthesizer, info, QStringLiteral("locked at %1 Hz").arg(frequency));
#define ZORVAN_PRINT(module, cls, level, ...)                                                                \
    ZORVAN_DETAIL_PRINT(ZORVAN_DETAIL_NAME(zorvanMessage, __COUNTER__), module, cls, level, __VA_ARGS__)

/// Prints the first active message of this place in the program, and no more. (In a template each instance is
/// a place.) A text that throws counts as printed.
///
///     if (lines.size() > limit)
///         ZORVAN_PRINT_ONCE(kernel, parser, warning, "more lines than expected");
#define ZORVAN_PRINT_ONCE(module, cls, level, ...)                                                           \
    ZORVAN_DETAIL_PRINT_LIMITED(ZORVAN_DETAIL_NAME(zorvanMessage, __COUNTER__), Once, (), module, cls,       \
                                level, __VA_ARGS__)

/// Prints the first of every \a count active messages of this place: with 3 the first, the fourth, the
/// seventh.
///
///     for (const Sample &sample : samples)
///         ZORVAN_PRINT_EVERY(1000, kernel, sampler, debug, sample.toString());
#define ZORVAN_PRINT_EVERY(count, module, cls, level, ...)                                                   \
    ZORVAN_DETAIL_PRINT_LIMITED(ZORVAN_DETAIL_NAME(zorvanMessage, __COUNTER__), Every, (count), module, cls, \
                                level, __VA_ARGS__)

/// Prints at most \a perSecond messages of this place in a second, which begins with its first message. 0 or
/// less: none.
///
///     while (!done())
///         ZORVAN_PRINT_AT_MOST(2, kernel, synthesizer, info, QStringLiteral("still waiting"));
#define ZORVAN_PRINT_AT_MOST(perSecond, module, cls, level, ...)                                             \
    ZORVAN_DETAIL_PRINT_LIMITED(ZORVAN_DETAIL_NAME(zorvanMessage, __COUNTER__), AtMost,                      \
                                (perSecond, ::Zorvan::detail::steadyMilliseconds()), module, cls, level,     \
                                __VA_ARGS__)
/// @}

/// \name Assertions and trace points
/// @{

/// Calls gyxAssert() if the condition does not hold. The message is evaluated only then; a '%' in it is
/// doubled by its author, one in the condition by the macro.
///
///     ZORVAN_ASSERT(index < size, "no such list");
///     ZORVAN_ASSERT(attenuator != nullptr, QStringLiteral("unit %1 has none").arg(unit));
#define ZORVAN_ASSERT(condition, ...)                                                                        \
    do {                                                                                                     \
        if (condition) {                                                                                     \
        } else {                                                                                             \
            ::Zorvan::detail::assertionFailed(#condition, __FILE__, __LINE__, __VA_ARGS__);                  \
        }                                                                                                    \
    } while (false)

/// Notes a trace point; the arguments are those of printf(), and evaluated in any case.
///
///     ZORVAN_TRACE("pass %d begins", pass);
///     ZORVAN_TRACE("all passes done");
#define ZORVAN_TRACE(...) ::Zorvan::detail::trace(__FILE__, __LINE__, __VA_ARGS__)
/// @}

// What the macros are made of. Names are made up with a number, for a text may contain a macro itself.

#define ZORVAN_DETAIL_JOIN(a, b) a##b
#define ZORVAN_DETAIL_NAME(name, number) ZORVAN_DETAIL_JOIN(name, number)

#define ZORVAN_DETAIL_PRINT(message, module, cls, level, ...)                                                \
    do {                                                                                                     \
        const auto message = ::Zorvan::detail::Message(module, cls, level);                                  \
        if (message.isWanted(ZORVAN_HIGHEST_LEVEL))                                                          \
            message.print(__FILE__, __LINE__, __VA_ARGS__);                                                  \
    } while (false)

/// The state of a limit has the same name in every file that includes the place: one place, one state.
#define ZORVAN_DETAIL_PRINT_LIMITED(message, Limit, arguments, module, cls, level, ...)                      \
    do {                                                                                                     \
        const auto message = ::Zorvan::detail::Message(module, cls, level);                                  \
        if (message.isWanted(ZORVAN_HIGHEST_LEVEL) && []() -> ::Zorvan::detail::Limit & {                    \
                static ::Zorvan::detail::Limit zorvanLimit;                                                  \
                return zorvanLimit;                                                                          \
            }()                                                                                              \
                                                                  .takes arguments)                          \
            message.print(__FILE__, __LINE__, __VA_ARGS__);                                                  \
    } while (false)

/// Behind the macros; not for direct use.
namespace Zorvan::detail {

/// Refuses messages of a module for their level, without a call into the library, which alone writes it and
/// never answers otherwise.
struct QuickLevel
{
    std::atomic<int> refusedAbove{0x7FFFFFFF}; ///< the highest of all levels: the library has to be asked
};

/// Those of the first modules, by id.
constexpr unsigned quickLevelCount = 64;
ZORVAN_EXPORT extern QuickLevel quickLevels[quickLevelCount];

inline bool isRefusedQuickly(moduleId module, int level)
{
    const auto index = static_cast<unsigned>(module);
    return index < quickLevelCount && level > quickLevels[index].refusedAbove.load(std::memory_order_relaxed);
}

inline QString toText(const QString &text)
{
    return text;
}

inline QString toText(const char *text)
{
    return QString::fromLatin1(text);
}

inline QString toText(const QByteArray &text)
{
    return QString::fromLatin1(text);
}

/// A message before it has a text.
class Message
{
public:
    Message(moduleId module, int cls, int level)
        : m_module(module)
        , m_class(cls)
        , m_level(level)
    {}

    [[nodiscard]] bool isWanted(int highestLevel) const
    {
        return m_level <= highestLevel && !isRefusedQuickly(m_module, m_level)
            && Debug::isActive(m_module, m_level, m_class);
    }

    template <typename Text>
    void print(const char *file, int line, const Text &text) const
    {
        Debug::println(m_module, m_class, toText(text), m_level, 0, file, line);
    }

private:
    moduleId m_module;
    int m_class;
    int m_level;
};

/// Takes the first message.
class Once
{
public:
    bool takes()
    {
        return !m_isDone.load(std::memory_order_relaxed)
            && !m_isDone.exchange(true, std::memory_order_relaxed);
    }

private:
    std::atomic<bool> m_isDone{false};
};

/// Takes the first of every so many messages.
class Every
{
public:
    bool takes(int count)
    {
        const std::uint64_t before = m_messages.fetch_add(1, std::memory_order_relaxed);
        return count <= 1 || before % static_cast<std::uint64_t>(count) == 0;
    }

private:
    std::atomic<std::uint64_t> m_messages{0};
};

/// Takes so many messages in a second that begins with the first of them.
class AtMost
{
public:
    /// \a now: milliseconds of a clock that does not go backwards.
    bool takes(int perSecond, std::uint64_t now)
    {
        std::uint64_t old = m_second.load(std::memory_order_relaxed);
        std::uint64_t taken = 0;
        do {
            // Another thread may have begun a second that is ahead of this one's clock: no new one then.
            const std::uint64_t begin = old >> countBits;
            const bool isOver = old == 0 || (now >= begin && now - begin >= 1000U);
            const std::uint64_t count = isOver ? 0 : old & countMask;
            if (perSecond <= 0 || count >= countMask || count >= static_cast<std::uint64_t>(perSecond))
                return false;
            taken = ((isOver ? now : begin) << countBits) | (count + 1);
        } while (!m_second.compare_exchange_weak(old, taken, std::memory_order_relaxed));
        return true;
    }

private:
    static constexpr unsigned countBits = 24; // leaves 34 years of milliseconds
    static constexpr std::uint64_t countMask = (std::uint64_t(1) << countBits) - 1;

    std::atomic<std::uint64_t> m_second{0}; // its begin, then the messages taken in it; 0: none yet
};

inline std::uint64_t steadyMilliseconds()
{
    using namespace std::chrono;
    return std::uint64_t(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

/// The log takes the condition for a format.
template <typename Text>
void assertionFailed(const char *condition, const char *file, int line, const Text &message)
{
    const QString doubled = QString::fromLatin1(condition).replace(QLatin1Char('%'), QLatin1String("%%"));
    gyxAssert(doubled, toText(message), file, line);
}

/// Not logHistory() itself: a single argument 0 would be taken for a list of arguments there.
inline void trace(const char *file, int line, const char *format, ...) ZORVAN_PRINTF_FORMAT(3, 4);
inline void trace(const char *file, int line, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    logHistory(file, line, format, &arguments);
    va_end(arguments);
}

} // namespace Zorvan::detail
