#ifndef ZORVAN_EXPORTS_H
#define ZORVAN_EXPORTS_H

/// \file
/// The library for plain C, and for hosts that load it at run time and look its functions up by name:
/// functions with C linkage that do what the members of Zorvan::Debug do, and the switches and reports of the
/// analysis tools.
///
/// C99 or later, or C++, there also beside <zorvan/debug.h>. The life cycle (Debug::initDebug(), exitDebug(),
/// createModule(), the host's callbacks) belongs to the C++ part of a host. C code uses the modules that
/// exist from the start (ids 0 to 26), or is handed ids.
///
/// Unless a function says otherwise: any thread may call it, at any time, also before Debug::initDebug() and
/// after Debug::exitDebug(), where there is no module table; no error is reported; bad input gives a neutral
/// value or does nothing; texts are NUL-terminated Latin-1, copied when kept, and null counts as empty. No
/// C++ exception leaves a function: one that a host's own callback throws ends the program.

#include <zorvan/export.h>

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus

namespace Zorvan {
using moduleId = int32_t;
struct hookData;
struct ressourceInfo;
class IAnalysisSummaryInterface;
} // namespace Zorvan

#define ZORVAN_TYPE(name) Zorvan::name
#define ZORVAN_NOEXCEPT noexcept
extern "C" {

#else

#include <stdbool.h>

/** Index of a module: 0 is the library's own, 0 to 26 exist from the start. */
typedef int32_t moduleId;

/** What an output receiver gets. */
struct hookData
{
    moduleId module;
    int32_t level;
    int32_t messageClass;
    const char *text; /**< the finished line, Latin-1, at most 2,047 characters; valid during the call only */
};

/** A stopwatch; see createMeasurement(). */
struct ressourceInfo;
/** Learns which methods were measured. Implemented in C++. */
struct IAnalysisSummaryInterface;

#define ZORVAN_TYPE(name) name
#define ZORVAN_NOEXCEPT
typedef struct hookData hookData;
typedef struct ressourceInfo ressourceInfo;
typedef struct IAnalysisSummaryInterface IAnalysisSummaryInterface;

#endif

/// \name Classes and levels
///
/// Message classes are indices into a module's class descriptions; -1 stands for all of them. Message levels
/// are indices into its level descriptions: 0 is the most important, a module lets through levels up to its
/// clipping level, and -1 as clipping level silences it. Without a table setters do nothing.
/// @{

/// Whether a message would be printed. Made for hot paths: takes no lock for classes 0 to 63 of a module that
/// exists and was asked about before, while any module can print. Level 0 passes whatever its class. Without
/// a table: true. Unknown module: false.
ZORVAN_EXPORT bool isActive(ZORVAN_TYPE(moduleId) module, int level, int cls) ZORVAN_NOEXCEPT;
/// The highest level that the module lets through; 0 without a table, -1 for an unknown module.
ZORVAN_EXPORT int getClippingLevel(ZORVAN_TYPE(moduleId) module) ZORVAN_NOEXCEPT;
/// Sets it; too high a value is lowered to the module's last level.
ZORVAN_EXPORT void setClippingLevel(ZORVAN_TYPE(moduleId) module, int level) ZORVAN_NOEXCEPT;
/// Sets it by name: "release" silences the module, "full" lets everything through, else the last level whose
/// description contains \a name. Every description contains an empty name.
ZORVAN_EXPORT void enableLevel(ZORVAN_TYPE(moduleId) module, const char *name) ZORVAN_NOEXCEPT;
/// Enables exactly the classes in \a names: "none" or "all" anywhere in it, else a comma-separated list of
/// beginnings of class names. An empty one disables all.
ZORVAN_EXPORT void enableClasses(ZORVAN_TYPE(moduleId) module, const char *names) ZORVAN_NOEXCEPT;
/// Enables one class; -1 enables all of the module, -2 disables all.
ZORVAN_EXPORT void enableMessageClassType(ZORVAN_TYPE(moduleId) module, int cls) ZORVAN_NOEXCEPT;
/// Disables one class; -1 disables all of the module, -2 enables all.
ZORVAN_EXPORT void disableMessageClassType(ZORVAN_TYPE(moduleId) module, int cls) ZORVAN_NOEXCEPT;

/// Describes the classes of a module with \a count texts, each a literal piece of the line header; a count of
/// -1: the array ends with a null pointer. Then applies the module's saved classes. The texts are not
/// changed.
ZORVAN_EXPORT void setMessageClassDescriptions(ZORVAN_TYPE(moduleId) module, int count,
                                               char **descriptions) ZORVAN_NOEXCEPT;
/// The same for levels.
ZORVAN_EXPORT void setMessageLevelDescriptions(ZORVAN_TYPE(moduleId) module, int count,
                                               char **descriptions) ZORVAN_NOEXCEPT;
/// The descriptions and, in \a count, their number; null and 0 without a table. The array stays valid.
ZORVAN_EXPORT const char **getMessageClassDescriptions(ZORVAN_TYPE(moduleId) module,
                                                       int *count) ZORVAN_NOEXCEPT;
ZORVAN_EXPORT const char **getMessageLevelDescriptions(ZORVAN_TYPE(moduleId) module,
                                                       int *count) ZORVAN_NOEXCEPT;
/// @}

/// \name Printing and settings
/// @{

/// Prints \a text if isActive() allows it, one output line per line of text; a line feed at the end adds
/// none, and a null text prints an empty line.
///
/// \a file and \a line name the caller's source position (null, -1: none); \a reserved is not interpreted.
/// Without a table the text goes to the system log, where '%' starts a conversion: write "%%" for a literal
/// one.
ZORVAN_EXPORT void println(ZORVAN_TYPE(moduleId) module, int cls, const char *text, int level, int reserved,
                           const char *file, int line) ZORVAN_NOEXCEPT;
/// Gives the lines of one module, or of all present modules with -1, to \a receiver, in place of the other
/// sinks; null takes it away again. Nothing happens without a table.
///
/// The receiver is called in the printing thread while the module table is locked: it may print (nested calls
/// end at a depth of eight), but must not wait for another thread that prints. While a receiver for all
/// modules is installed the library keeps its own notices to itself and Debug::exitDebug() does nothing.
ZORVAN_EXPORT void setOutputReceiver(ZORVAN_TYPE(moduleId) module,
                                     void (*receiver)(ZORVAN_TYPE(hookData) *)) ZORVAN_NOEXCEPT;
/// The flag word: 1 file output, 2 module name, 4 class, 8 level, 16 throw assertions, 32 clear by program,
/// 256 time stamp, 512 thread, 1024 console output. 14 without a table.
ZORVAN_EXPORT int getDisplayFlags(void) ZORVAN_NOEXCEPT;
/// Switches one flag and prints a notice. On/off: file output -1/-2, throw assertions -3/-4, time stamp
/// -5/-6, thread -7/-8, module name -9/-10, console output -11/-12, clear by program -13/-14. Every other
/// value changes nothing.
ZORVAN_EXPORT void setDisplayFlags(int command) ZORVAN_NOEXCEPT;
/// @}

/// \name Hooks
/// Named entry points that the host, a user or a remote client triggers with a text. A null key or function
/// does nothing, unless it says otherwise; so does everything while a receiver for all modules is installed.
/// @{

/// Adds a function. It runs in a thread that is made for the activation, unless the key was first installed
/// as direct, from C++. Its arguments, key and parameters, are copies of its own, which end with the call.
ZORVAN_EXPORT void installCHookHandler(const char *key, void (*function)(char *, char *)) ZORVAN_NOEXCEPT;
/// Removes a function; null: all functions of the key. Also while a receiver for all modules is installed.
ZORVAN_EXPORT void removeCHookHandler(const char *key, void (*function)(char *, char *)) ZORVAN_NOEXCEPT;
/// Runs the handlers of a key; an unknown key does nothing. Does not wait for those with threads of their
/// own.
ZORVAN_EXPORT void activateHooks(const char *key, const char *parameters) ZORVAN_NOEXCEPT;
/// @}

/// \name Measurements
/// Stopwatches in ticks of the host's counter; without a host all of them are 0. A stopwatch belongs to one
/// thread at a time.
/// @{

/// Makes a stopwatch that reports on this module, class and level. Null if there is no memory. Only C++ can
/// delete it: C code makes it once and keeps it.
ZORVAN_EXPORT ZORVAN_TYPE(ressourceInfo)
    * createMeasurement(ZORVAN_TYPE(moduleId) module, int cls, int level) ZORVAN_NOEXCEPT;
/// Starts it; returns the counter. Null: does nothing, 0.
ZORVAN_EXPORT uint64_t startMeasurement(ZORVAN_TYPE(ressourceInfo) * info) ZORVAN_NOEXCEPT;
/// Stops it; returns the ticks since its start. Null: does nothing, 0.
ZORVAN_EXPORT int64_t stopMeasurement(ZORVAN_TYPE(ressourceInfo) * info) ZORVAN_NOEXCEPT;
/// Prints the mean of all starts, with the change of tracked memory while memory is tracked.
ZORVAN_EXPORT void dumpRessources(ZORVAN_TYPE(ressourceInfo) * info) ZORVAN_NOEXCEPT;
/// @}

/// \name Analysis tools
///
/// They run if the low-level property "analyzingToolsEnabled" was 1 when the library was loaded. Otherwise
/// they cannot be switched on, functions return 0 or do nothing, and alloc() and release() are malloc() and
/// free(). Reports go to the handler of installanalysisMessageHandler(), see <zorvan/analysis.h>; without
/// one, to nobody.
/// @{

/// Stores a \a state of 0 or more as the property and returns it; it takes effect when the library is loaded
/// next. A negative one asks for the present value.
ZORVAN_EXPORT int analyzingToolsEnabled(int state) ZORVAN_NOEXCEPT;
/// The same for the property "analyzingOnStartup": whether tracking begins with the start of the tools.
ZORVAN_EXPORT int analyzingToolsOnStartup(int state) ZORVAN_NOEXCEPT;
/// Tells \a receiver every method of every thread that was measured; null does nothing.
ZORVAN_EXPORT void getInstruemntationInformations(ZORVAN_TYPE(IAnalysisSummaryInterface)
                                                  * receiver) ZORVAN_NOEXCEPT;
/// @}

/// \name Tracked allocations
/// @{

/// Allocates \a size bytes with malloc(), or with C++'s operator new if \a useNew, and records them with the
/// source position while memory is tracked; \a file null: not recorded. \a reserved is not used: pass false.
/// Null if there is no memory.
ZORVAN_EXPORT void *alloc(size_t size, const char *file, int line, bool useNew,
                          bool reserved) ZORVAN_NOEXCEPT;
/// Frees a block of alloc() or malloc(), tracked or not; null does nothing.
ZORVAN_EXPORT void release(void *block) ZORVAN_NOEXCEPT;
/// Switches tracking and stores the \a state, 0 or more, as the property "memTrackingEnabled"; a negative one
/// only asks. Returns whether memory is tracked.
ZORVAN_EXPORT int memTrackingEnabled(int state) ZORVAN_NOEXCEPT;
/// Whether memory is tracked.
ZORVAN_EXPORT int getMemTrackState(void) ZORVAN_NOEXCEPT;
/// Switches tracking off with 0, on with any other value: with all counters at zero if it was off.
ZORVAN_EXPORT void setMemTrackState(int state) ZORVAN_NOEXCEPT;
/// Bytes in tracked blocks. Releases count from the next tracked allocation or report on.
ZORVAN_EXPORT int getTrackedMemUsage(void) ZORVAN_NOEXCEPT;
/// Forgets all blocks, the peaks and the averages; the bytes in use stay.
ZORVAN_EXPORT void clearLeakInfo(void) ZORVAN_NOEXCEPT;
/// Reports the blocks that were not released by source position and size, and the statistics. Only sources
/// whose file name occurs in \a sourceFilter; null or empty: all.
ZORVAN_EXPORT void dumpLeaks(const char *sourceFilter) ZORVAN_NOEXCEPT;
/// @}

/// \name Method timing
/// @{

/// Begins the measurement of a method, in processor cycles, per thread and without those of measured methods
/// that it calls. Each start wants its end in the same thread, the last one first.
///
/// \a file and \a methodName are told apart by their addresses: use literals. \a id tells the methods of the
/// program apart. C++ code gets its ids from make_id(), which counts up from 0, 65,536 for each source file;
/// it never comes near 0x80000000u + a number of one's own. 0 is the tools' own.
ZORVAN_EXPORT void startMethod(unsigned id, const char *file, int line,
                               const char *methodName) ZORVAN_NOEXCEPT;
/// Ends it. An id that was not started is reported.
ZORVAN_EXPORT void endMethod(unsigned id) ZORVAN_NOEXCEPT;
/// Switches measuring and stores the \a state, 0 or more, as the property "timeTrackingEnabled"; a negative
/// one only asks. Returns whether methods are measured.
ZORVAN_EXPORT int timeTrackingEnabled(int state) ZORVAN_NOEXCEPT;
/// Whether methods are measured.
ZORVAN_EXPORT int getTimeTrackState(void) ZORVAN_NOEXCEPT;
/// Switches measuring off with 0, on with any other value. The first 1 also finds out what measuring costs.
ZORVAN_EXPORT void setTimeTrackState(int state) ZORVAN_NOEXCEPT;
/// Forgets all measurements. Methods that are being measured end as unknown ones.
ZORVAN_EXPORT void clearTimesInfo(void) ZORVAN_NOEXCEPT;
/// Reports calls and cycles of each method and thread. Filters as in dumpLeaks(), for the source file and for
/// the name of the method.
ZORVAN_EXPORT void dumpTimes(const char *sourceFilter, const char *methodFilter) ZORVAN_NOEXCEPT;
/// @}

#ifdef __cplusplus
} // extern "C"
#endif

#undef ZORVAN_TYPE
#undef ZORVAN_NOEXCEPT

#endif
