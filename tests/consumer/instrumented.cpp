// Uses the headers of the analysis and the macros, in a program that any failure ends with another exit code.
#include <zorvan/analysis.h>
#include <zorvan/debug.h>

int main()
{
    ZORVAN_TIME_METHOD();
    Zorvan::Debug::initDebug();
    void *const block = ZORVAN_MALLOC(64);
    ZORVAN_PRINT(2, 0, 3, QStringLiteral("a buffer of 64 bytes"));
    ZORVAN_ASSERT(block != nullptr, "no buffer");
    ZORVAN_FREE(block);
    Zorvan::Debug::exitDebug();
    return block == nullptr ? 1 : 0;
}
