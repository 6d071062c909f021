// A host with functions of its own under the library's names, which the library must not call.

#include <zorvan/debug.h>

#include <cstdio>
#include <cstdlib>

namespace {

int s_calls = 0;
int s_lines = 0;

class Host : public Zorvan::IUtilityInterface
{
    void outputLine(const QString &) override { ++s_lines; }
};

} // namespace

extern "C" {
bool isActive(int, int, int)
{
    ++s_calls;
    return false;
}
void println(const char *)
{
    ++s_calls;
}
void *alloc(int)
{
    ++s_calls;
    return nullptr;
}
void release(int)
{
    ++s_calls;
}
int startMethod(int)
{
    return ++s_calls;
}
int endMethod(int)
{
    return ++s_calls;
}
int getMemTrackState()
{
    return ++s_calls;
}
}

int main()
{
    using Zorvan::Debug;
    Host host;
    Debug::setUtilityCallbackHandler(&host);
    Debug::initDebug();
    ZORVAN_PRINT(2, 0, 0, "printed");
    Debug::setClippingLevel(2, 1);
    ZORVAN_PRINT(2, 0, 2, "refused");
    Debug::setDisplayFlags(-5); // prints notices
    ZORVAN_FREE(ZORVAN_REALLOC(ZORVAN_MALLOC(100), 200));
    ZORVAN_FREE(ZORVAN_CALLOC(100));
    {
        ZORVAN_TIME_METHOD();
        ZORVAN_TIME_SCOPE("scope");
    }
    Zorvan::ressourceInfo *const watch = Debug::createMeasurement(2, 0, 0);
    Debug::startMeasurement(watch);
    Debug::dumpRessources(watch);
    delete watch;
    Debug::exitDebug();
    Debug::setUtilityCallbackHandler(nullptr);
    std::printf("%d lines, %d calls\n", s_lines, s_calls);
    return 0;
}
