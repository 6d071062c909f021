#include "debug/displayflags.h"

#include "debug/notice.h"

#include <zorvan/debug.h>

#include <atomic>

namespace Zorvan::displayflags {

namespace {

constexpr unsigned defaultWord = moduleName | classDescription | levelDescription;

std::atomic<unsigned> s_word{defaultWord};

/// The flags with commands: the n-th is switched on by -(2n + 1) and off by -(2n + 2).
constexpr Flag commandedFlags[] = {fileOutput,    throwAssertion,        timeStamp, threadId, moduleName,
                                   consoleOutput, allowProgrammaticClear};
constexpr int commandCount = 2 * static_cast<int>(sizeof commandedFlags / sizeof *commandedFlags);

void printFlags()
{
    if (TableState::hasGlobalReceiver())
        return;
    printNotice(QStringLiteral("KLV debug flag settings changed:"));
    const unsigned flags = word();
    if (has(flags, fileOutput))
        printNotice(QStringLiteral("+ writing output to file"));
    if (has(flags, moduleName))
        printNotice(QStringLiteral("+ displaying module name"));
    if (has(flags, classDescription))
        printNotice(QStringLiteral("+ displaying message class description"));
    if (has(flags, levelDescription))
        printNotice(QStringLiteral("+ displaying message level"));
}

void set(Flag flag, bool on)
{
    if (on)
        s_word.fetch_or(flag, std::memory_order_relaxed);
    else
        s_word.fetch_and(~static_cast<unsigned>(flag), std::memory_order_relaxed);
}

} // namespace

unsigned word()
{
    return s_word.load(std::memory_order_relaxed);
}

void change(Flag flag, bool on)
{
    set(flag, on);
    printFlags();
}

void reset()
{
    s_word.store(defaultWord, std::memory_order_relaxed);
}

} // namespace Zorvan::displayflags

namespace Zorvan {

void Debug::setDisplayFlags(int command)
{
    using namespace displayflags;
    if (command < 0 && command >= -commandCount) {
        const int index = -command - 1;
        set(commandedFlags[index / 2], index % 2 == 0);
    }
    printFlags();
}

int Debug::getDisplayFlags()
{
    return static_cast<int>(displayflags::word());
}

} // namespace Zorvan
