// The functions with C linkage. A host may have functions of the same names, and then they never see a call
// of the library: inside it only the members and the functions of the analyzer are called, never these.

#include "debug/measurements.h"
#include "debug/moduletable.h"
#include "debug/printing.h"
#include "leakanalyzer/analysiscontrol.h"
#include "leakanalyzer/leaktracker.h"
#include "leakanalyzer/methodtiming.h"

#include <zorvan/debug.h>
#include <zorvan/exports.h>

using Zorvan::Debug;
using Zorvan::hookData;
using Zorvan::IAnalysisSummaryInterface;
using Zorvan::moduleId;
using Zorvan::ressourceInfo;
namespace analysis = Zorvan::analysis;

// Modules and classification

bool isActive(moduleId module, int level, int cls) noexcept
{
    return Debug::isActive(module, level, cls);
}

int getClippingLevel(moduleId module) noexcept
{
    return Debug::getClippingLevel(module);
}

void setClippingLevel(moduleId module, int level) noexcept
{
    Debug::setClippingLevel(module, level);
}

void enableLevel(moduleId module, const char *name) noexcept
{
    Debug::enableLevel(module, QString::fromLatin1(name));
}

void enableClasses(moduleId module, const char *names) noexcept
{
    Debug::enableClasses(module, QString::fromLatin1(names));
}

void enableMessageClassType(moduleId module, int cls) noexcept
{
    Debug::enableMessageClassType(module, cls);
}

void disableMessageClassType(moduleId module, int cls) noexcept
{
    Debug::disableMessageClassType(module, cls);
}

void setMessageClassDescriptions(moduleId module, int count, char **descriptions) noexcept
{
    Debug::setMessageClassDescriptions(module, count, descriptions);
}

void setMessageLevelDescriptions(moduleId module, int count, char **descriptions) noexcept
{
    Debug::setMessageLevelDescriptions(module, count, descriptions);
}

const char **getMessageClassDescriptions(moduleId module, int *count) noexcept
{
    return Debug::getMessageClassDescriptions(module, count);
}

const char **getMessageLevelDescriptions(moduleId module, int *count) noexcept
{
    return Debug::getMessageLevelDescriptions(module, count);
}

// Printing, settings, hooks

void println(moduleId module, int cls, const char *text, int level, int reserved, const char *file,
             int line) noexcept
{
    // Asked first: converting the text costs many times the question. Without a table every text goes to the
    // system log, whatever the answer.
    const auto atLength = [=] {
        return Debug::isActive(module, level, cls) || !Zorvan::ModuleTable::exists();
    };
    if (Zorvan::ModuleTable::quickSwitches().isActive(module, level, cls, atLength))
        Zorvan::printUnlessRefused(module, cls, QString::fromLatin1(text), level, reserved, file, line);
}

void setOutputReceiver(moduleId module, void (*receiver)(hookData *)) noexcept
{
    Debug::setOutputReceiver(module, receiver);
}

int getDisplayFlags() noexcept
{
    return Debug::getDisplayFlags();
}

void setDisplayFlags(int command) noexcept
{
    Debug::setDisplayFlags(command);
}

void installCHookHandler(const char *key, void (*function)(char *, char *)) noexcept
{
    Debug::installCHookHandler(key, function);
}

void removeCHookHandler(const char *key, void (*function)(char *, char *)) noexcept
{
    Debug::removeCHookHandler(key, function);
}

void activateHooks(const char *key, const char *parameters) noexcept
{
    Debug::activateHooks(key, parameters);
}

// Measurements

ressourceInfo *createMeasurement(moduleId module, int cls, int level) noexcept
{
    return Debug::createMeasurement(module, cls, level);
}

uint64_t startMeasurement(ressourceInfo *info) noexcept
{
    return Zorvan::measurements::start(info);
}

int64_t stopMeasurement(ressourceInfo *info) noexcept
{
    return Zorvan::measurements::stop(info);
}

void dumpRessources(ressourceInfo *info) noexcept
{
    Debug::dumpRessources(info);
}

// Analysis tools

int analyzingToolsEnabled(int state) noexcept
{
    return analysis::toolsEnabled(state);
}

int analyzingToolsOnStartup(int state) noexcept
{
    return analysis::startupAnalysis(state);
}

void *alloc(size_t size, const char *file, int line, bool useNew, bool) noexcept
{
    return analysis::allocate(size, file, line, useNew);
}

void release(void *block) noexcept
{
    analysis::freeBlock(block);
}

int memTrackingEnabled(int state) noexcept
{
    return analysis::memoryTrackingEnabled(state);
}

int getMemTrackState() noexcept
{
    return analysis::memoryTracking();
}

void setMemTrackState(int state) noexcept
{
    analysis::setMemoryTracking(state);
}

int getTrackedMemUsage() noexcept
{
    return analysis::trackedMemoryUsage();
}

void clearLeakInfo() noexcept
{
    analysis::clearLeaks();
}

void dumpLeaks(const char *sourceFilter) noexcept
{
    analysis::dumpLeaks(sourceFilter);
}

void startMethod(unsigned id, const char *file, int line, const char *methodName) noexcept
{
    analysis::startMethod(id, file, line, methodName);
}

void endMethod(unsigned id) noexcept
{
    analysis::endMethod(id);
}

int timeTrackingEnabled(int state) noexcept
{
    return analysis::timeTrackingEnabled(state);
}

int getTimeTrackState() noexcept
{
    return analysis::timeTracking();
}

void setTimeTrackState(int state) noexcept
{
    analysis::setTimeTracking(state);
}

void clearTimesInfo() noexcept
{
    analysis::clearTimes();
}

void dumpTimes(const char *sourceFilter, const char *methodFilter) noexcept
{
    analysis::dumpTimes(sourceFilter, methodFilter);
}

void getInstruemntationInformations(IAnalysisSummaryInterface *receiver) noexcept
{
    if (receiver != nullptr)
        analysis::reportMethods(receiver);
}
