#include "debug/displayflags.h"

#include "debug/moduletable.h"
#include "debug/receivers.h"

#include <zorvan/debug.h>

#include <atomic>

namespace Zorvan::displayflags {

namespace {

constexpr unsigned defaultWord = moduleName | classDescription | levelDescription;
constexpr int infoLevel = 3;

std::atomic<unsigned> s_word{defaultWord};

/// The flags with commands: the n-th is switched on by -(2n + 1) and off by -(2n + 2).
constexpr Flag commandedFlags[] = {fileOutput, throwAssertion, timeStamp,             threadId,
                                   moduleName, consoleOutput,  allowProgrammaticClear};
constexpr int commandCount = 2 * static_cast<int>(sizeof commandedFlags / sizeof *commandedFlags);

void printNoticeLine(const QString &text)
{
    if (Debug::isActive(libraryModule, infoLevel, 0))
        Debug::println(libraryModule, 0, text, infoLevel);
}

void printNotice()
{
    if (hasGlobalReceiver())
        return;
    printNoticeLine(QStringLiteral("KLV debug flag settings changed:"));
    const unsigned flags = word();
    if (has(flags, fileOutput))
        printNoticeLine(QStringLiteral("+ writing output to file"));
    if (has(flags, moduleName))
        printNoticeLine(QStringLiteral("+ displaying module name"));
    if (has(flags, classDescription))
        printNoticeLine(QStringLiteral("+ displaying message class description"));
    if (has(flags, levelDescription))
        printNoticeLine(QStringLiteral("+ displaying message level"));
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
    printNotice();
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
    printNotice();
}

int Debug::getDisplayFlags()
{
    return static_cast<int>(displayflags::word());
}

} // namespace Zorvan
