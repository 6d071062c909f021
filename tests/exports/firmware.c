/* A module of a firmware in C. Uses every function of the C interface and checks what it does. */

#include "firmware.h"

#include <zorvan/exports.h>

#include <stdatomic.h>
#include <stdio.h>
#include <string.h>

enum { kernel = 2, gui = 3, info = 3, method = 7 };

static int s_failures = 0;
static int s_lines = 0;
static hookData s_last;
static char s_text[2048];
static atomic_int s_hookCalls = 0;
static ressourceInfo *volatile s_watches[2]; /* made once and kept */
static atomic_int s_wrongHookCalls = 0;

#define CHECK(condition) check(condition, #condition, __LINE__)

static void check(bool holds, const char *condition, int line)
{
    if (holds)
        return;
    ++s_failures;
    printf("line %d: %s does not hold\n", line, condition);
}

static void receive(hookData *data)
{
    ++s_lines;
    s_last = *data;
    snprintf(s_text, sizeof s_text, "%s", data->text);
}

static void hook(char *key, char *parameters)
{
    if (strcmp(key, "firmware") != 0 || (strcmp(parameters, "reset") != 0 && *parameters != '\0'))
        ++s_wrongHookCalls;
    ++s_hookCalls;
}

/* Whether the last line of the receiver ends so. */
static bool endsWith(const char *end)
{
    const size_t length = strlen(s_text);
    return length >= strlen(end) && strcmp(s_text + length - strlen(end), end) == 0;
}

static void useDescriptions(void)
{
    char *classes[] = {"<synthesizer>, ", "<attenuator>, ", NULL};
    char *levels[] = {"<fatal>: ", "<wrong>: ", "<odd>: ", "<note>: "};
    int count = -1;
    setMessageClassDescriptions(gui, -1, classes);
    CHECK(strcmp(getMessageClassDescriptions(gui, &count)[1], "<attenuator>, ") == 0 && count == 2);
    setMessageLevelDescriptions(gui, 4, levels);
    CHECK(strcmp(getMessageLevelDescriptions(gui, &count)[3], "<note>: ") == 0 && count == 4);
    enableLevel(gui, "odd");
    CHECK(getClippingLevel(gui) == 2);
    enableLevel(gui, NULL);
    CHECK(getClippingLevel(gui) == 3);
    setClippingLevel(gui, 1);
    CHECK(getClippingLevel(gui) == 1 && isActive(gui, 1, 0) && !isActive(gui, 2, 0));
    enableClasses(gui, "att");
    CHECK(isActive(gui, 1, 1) && !isActive(gui, 1, 0));
    disableMessageClassType(gui, 1);
    enableMessageClassType(gui, 0);
    CHECK(isActive(gui, 1, 0) && !isActive(gui, 1, 1));
    enableClasses(gui, NULL);
    CHECK(!isActive(gui, 1, 0) && isActive(gui, 0, 0));
}

static void usePrinting(void)
{
    setClippingLevel(kernel, info);
    setOutputReceiver(kernel, receive);
    println(kernel, 0,
            "10 \xb0"
            "C",
            info, 0, "firmware.c", 12);
    CHECK(s_lines == 1 && s_last.module == kernel && s_last.level == info && s_last.messageClass == 0);
    CHECK(endsWith("Info>: 10 \xb0"
                   "C"));
    println(kernel, 0, "refused", info + 1, 0, NULL, -1);
    CHECK(s_lines == 1);
    println(kernel, 0, NULL, info, 0, NULL, -1);
    CHECK(s_lines == 2 && endsWith("Info>: "));
    const int flags = getDisplayFlags();
    setDisplayFlags(-7);
    CHECK(getDisplayFlags() == (flags | 512));
    setDisplayFlags(-8);
    CHECK(getDisplayFlags() == flags);
}

static void useHooks(void)
{
    installCHookHandler(NULL, hook);
    installCHookHandler("firmware", NULL);
    installCHookHandler("firmware", hook);
    activateHooks("firmware", "reset");
    activateHooks("firmware", NULL);
    activateHooks(NULL, NULL);
    for (int i = 0; s_hookCalls < 2 && i < 10000; ++i) /* each has a thread of its own */
        waitMoment();
    removeCHookHandler(NULL, hook);
    removeCHookHandler("firmware", hook);
    activateHooks("firmware", "removed");
    CHECK(s_hookCalls == 2 && s_wrongHookCalls == 0);
}

static void useAllocations(void)
{
    CHECK(analyzingToolsEnabled(-1) == 1 && analyzingToolsOnStartup(-1) == 1);
    CHECK(analyzingToolsOnStartup(5) == 5 && analyzingToolsEnabled(-1) == 1);
    CHECK(getMemTrackState() == 1);
    setMemTrackState(0);
    CHECK(memTrackingEnabled(-1) == 0 && memTrackingEnabled(1) == 1);
    ressourceInfo *const watch = s_watches[0] = createMeasurement(kernel, 1, info);
    const uint64_t begin = startMeasurement(watch);
    char *const block = alloc(300, "firmware.c", 1, false, false);
    CHECK(block != NULL && getTrackedMemUsage() == 300);
    memset(block, 'x', 300);
    const int64_t ticks = stopMeasurement(watch);
    CHECK(begin > 0 && ticks == 100);
    dumpRessources(watch);
    CHECK(endsWith(">: current timeallocated memory was 300 bytes, 100cycles needed"));
    CHECK(s_last.messageClass == 1 && s_last.level == info);
    CHECK(startMeasurement(NULL) == 0 && stopMeasurement(NULL) == 0);
    dumpRessources(NULL);
    const int statistics = 6;
    int before = reportedTexts();
    dumpLeaks("firmware.c");
    CHECK(reportedTexts() == before + 1 + statistics);
    dumpLeaks("other.c");
    CHECK(reportedTexts() == before + 1 + 2 * statistics);
    release(block);
    before = reportedTexts();
    dumpLeaks(NULL);
    CHECK(reportedTexts() == before + 1 + statistics && getTrackedMemUsage() == 0); /* "no memory leaks" */
    void *const first = alloc(50, "firmware.c", 2, true, false);
    void *const second = alloc(50, "firmware.c", 3, false, false);
    dumpLeaks(NULL);
    CHECK(reportedTexts() == before + 3 + 2 * statistics);
    clearLeakInfo();
    dumpLeaks(NULL);
    CHECK(reportedTexts() == before + 4 + 3 * statistics);
    release(second);
    release(first);
    release(NULL);
}

static void useTiming(void)
{
    CHECK(getTimeTrackState() == 1);
    setTimeTrackState(0);
    CHECK(timeTrackingEnabled(-1) == 0 && timeTrackingEnabled(1) == 1);
    startMethod(0x80000000U + method, "firmware.c", 2, "useTiming");
    endMethod(0x80000000U + method);
    dumpTimes("firmware.c", "useTiming");
    CHECK(reportedRows() > 0);
    const int rows = reportedRows();
    clearTimesInfo();
    dumpTimes(NULL, NULL);
    CHECK(reportedRows() == rows);
    getInstruemntationInformations(NULL);
    startMethod(0x80000000U + method, "firmware.c", 2, "useTiming");
    CHECK(methodsToldToTheHost() > 0);
}

int useEveryExport(void)
{
    CHECK(isActive(kernel, 1000, 0) && getClippingLevel(kernel) == 0); /* no table yet */
    println(kernel, 0, "before the start", 0, 0, NULL, -1);
    s_watches[1] = createMeasurement(kernel, 0, 0);
    CHECK(s_watches[1] != NULL);
    startHost();
    useDescriptions();
    usePrinting();
    useHooks();
    useAllocations();
    useTiming();
    setOutputReceiver(kernel, NULL);
    stopHost();
    return s_failures;
}
