#pragma once

/// \file
/// The C++ interface of the library: the facade Zorvan::Debug, the interfaces a host implements, and the
/// services that work without a Qt application; through <zorvan/analysis.h> the instrumentation of methods
/// and allocations, through <zorvan/macros.h> short forms that add file and line. <zorvan/exports.h>, for
/// plain C and for what the analysis tools report, is not included.
///
/// A host sets its callbacks, calls Debug::initDebug(), creates its modules and prints; it calls
/// Debug::exitDebug() once for every Debug::initDebug(). See docs/embedding.md.
///
/// Unless a function says otherwise: any thread may call it; it never throws; bad input gives a neutral value
/// or does nothing; narrow strings are NUL-terminated Latin-1, copied when kept, and null counts as empty.

#include <zorvan/analysis.h>
#include <zorvan/export.h>

#include <QString>

#include <cstdarg>

class QObject;
class QWidget;

#if defined(__GNUC__)
#define ZORVAN_PRINTF_FORMAT(formatPlace, firstPlace) __attribute__((format(printf, formatPlace, firstPlace)))
#else
#define ZORVAN_PRINTF_FORMAT(formatPlace, firstPlace)
#endif

namespace Zorvan {

class DebugWindow;

/// Index of a module: 0 is the library's own, 0 to 26 exist from the start, createModule() hands out 27, 28,
/// ...
using moduleId = qint32;

/// What an output receiver gets.
struct hookData
{
    moduleId module;
    qint32 level;
    qint32 messageClass;
    const char *text; ///< the finished line, Latin-1, at most 2,047 characters; valid during the call only
};

/// Takes the lines of a module in place of the line tap, the standard output and the debug window.
///
/// Called in the printing thread while the module table is locked: it may print (nested calls end at a depth
/// of eight), but must not wait for another thread that prints.
using OutputReceiver = void (*)(hookData *data);

/// Shows texts on behalf of the library; handed out by IUtilityInterface::informationManager().
class ZORVAN_EXPORT IInformationManager
{
public:
    virtual ~IInformationManager();
    /// Gets the text of each message box before it is shown, in the thread that asks, also while boxes are
    /// switched off.
    virtual void showInformation(const QString &caption, const QString &text);
};

/// The host's settings store, clock and line tap. Override what the host has; the rest keeps its neutral
/// default.
///
/// The library calls it from whichever thread needs something, often with the module table locked: an
/// implementation may call the library, but must not wait for another thread that prints.
/// The declaration order is the binary interface: hosts may be compiled separately.
class ZORVAN_EXPORT IUtilityInterface
{
public:
    virtual ~IUtilityInterface();
    /// The stored number, or \a defaultValue if there is none.
    virtual int readIntegerSetting(const char *group, const QString &key, int defaultValue);
    /// The stored text, or \a defaultValue if there is none.
    virtual QString readStringSetting(const char *group, const QString &key, const QString &defaultValue);
    /// Stores a text; integers are written as decimal text.
    virtual void writeStringSetting(const char *group, const QString &key, const QString &value);
    virtual void reserved4(); ///< not called
    virtual void reserved5(); ///< not called
    virtual void reserved6(); ///< not called
    virtual void reserved7(); ///< not called
    virtual void reserved8(); ///< not called
    virtual void reserved9(); ///< not called
    virtual void reserved10(); ///< not called
    /// Takes every finished line that no receiver took, before it goes to the standard output or the window.
    virtual void outputLine(const QString &line);
    /// Whether the library may show message boxes. Asked at each start. Default: true.
    virtual bool messageBoxesAllowed();
    /// Counts per second of readCounter(). Default: 3902.0.
    virtual double counterFrequency();
    virtual void reserved14(); ///< not called
    virtual void reserved15(); ///< not called
    /// The high-resolution counter behind time stamps. Default: 0, so that time stamps stand still.
    virtual quint64 readCounter();
    /// Null if the host has none (the default).
    virtual IInformationManager *informationManager();
};

/// The host's threads. (The spelling is part of the interface.)
class ZORVAN_EXPORT IThraedInterface
{
public:
    virtual ~IThraedInterface();
    /// Name of the calling thread, for the line header; null counts as empty. Called while the module table
    /// is locked.
    virtual const char *threadName();
};

/// Replaces the library's message boxes.
class ZORVAN_EXPORT IMessageBoxInterface
{
public:
    virtual ~IMessageBoxInterface();
    /// Gets the message, without caption and heading, in the GUI thread. The box then answers 1.
    virtual void showMessage(const QString &text);
};

/// Sees the state of the debug window, and the keys that none of its controls has used up.
class ZORVAN_EXPORT IKeyInterface
{
public:
    virtual ~IKeyInterface();
    /// True if the key is used up.
    virtual bool keyEvent(int key, int modifiers);
    /// The debug window was shown or hidden.
    virtual void visibilityChanged(QWidget *window, bool visible);
    /// It became, or is no longer, the active window.
    virtual void activationChanged(QWidget *window, bool active);
};

/// A handler of hooks; see Debug::installHook().
class ZORVAN_EXPORT IHookInterface
{
public:
    virtual ~IHookInterface();
    /// Called once for each activation of a key that the handler is installed under. Both texts are Latin-1
    /// copies of its own, which it may change; they end with the call. It may install, remove and activate
    /// hooks. One that runs long in a thread of its own looks at QThread::isInterruptionRequested(): the
    /// library wants to end, and waits for two seconds.
    virtual void hookActivated(char *key, char *parameters);
};

/// Takes the results of the analysis tools; see installanalysisMessageHandler(). Texts and rows come on the
/// thread that produced them, from several threads at once if need be, with no lock of the library held: it
/// may print, measure, allocate and ask for reports.
class ZORVAN_EXPORT IAnalysisOutputInterface
{
public:
    virtual ~IAnalysisOutputInterface();
    /// A finished line, and what it is about: a source position of the host's, or a part of the tools.
    virtual void textOutput(const char *source, int line, const char *text) = 0;
    /// Comes before the rows of a table: how many there are, the sums of their cycles and calls, and the
    /// earliest and the latest time stamp. All zeros if nothing was measured.
    virtual void summary(int records, qint64 totalCycles, qint64 reserved, qint64 calls,
                         quint64 earliestStamp, quint64 latestStamp) = 0;
    /// One method in one thread.
    virtual void tableRow(int row, const char *methodName, quint64 reference, int calls, quint64 startStamp,
                          qint64 totalCycles, qint64 overheadCycles) = 0;
    virtual void tableComplete() = 0;
};

/// Learns which methods were measured; see getInstruemntationInformations() in <zorvan/exports.h>.
class ZORVAN_EXPORT IAnalysisSummaryInterface
{
public:
    virtual ~IAnalysisSummaryInterface();
    /// One method of one thread. \a file is null for the analyzer's own measurement of its costs.
    virtual void methodInformation(const char *file, int line, const char *methodName) = 0;
};

/// A stopwatch: adds up the counter ticks between many starts and stops; see Debug::createMeasurement().
/// It belongs to one caller, who deletes it and may change its texts and the divisor.
struct ressourceInfo
{
    quint64 start = 0; ///< counter at the last start
    quint64 stop = 0; ///< counter at the last stop
    qint64 accumulated = 0; ///< ticks between starts and stops, summed up
    qint64 count = 0; ///< starts
    qint32 memoryAtStart = 0; ///< bytes in tracked blocks at the last start
    qint32 memoryAtStop = 0; ///< and at the last stop
    double divisor = 1.0; ///< of the mean; with the counter's frequency the report is in seconds
    QString label =
        QStringLiteral("current time"); ///< begins the report; without a table '%' as in println()
    QString unit = QStringLiteral("cycles"); ///< stands behind the number
    moduleId module = 0; ///< of the report, as messageClass and level
    qint32 messageClass = 0;
    qint32 level = 0;
};

/// The stages of one hardware setting that Debug::timeMeas4HwSetting() measures.
enum enumTimeMeas : qint32 {
    timeMeasTotal,
    timeMeasParse,
    timeMeasScpiToDatabase,
    timeMeasDatabase,
    timeMeasHardware,
    timeMeasHardwareSecondPass,
    timeMeasHardwareFrequency,
    timeMeasHardwareLevel,
};

/// The facade: modules, printing, settings, life cycle, and the road into the GUI thread. All members are
/// static.
///
/// Before initDebug() and after exitDebug() there is no module table: println() writes to the system log,
/// setters of modules do nothing, getters return what their comments call "without a table".
///
/// Message classes are indices into a module's class descriptions; -1 stands for all of them. Message levels
/// are indices into its level descriptions: 0 is the most important, a module lets through levels up to its
/// clipping level, and -1 as clipping level silences it.
class ZORVAN_EXPORT Debug
{
public:
    Debug() = delete;

    /// \name Life cycle
    /// @{

    /// Starts the library, or counts one more user of it; only the first call reads the settings. Main
    /// thread.
    ///
    /// A later call, once a Qt application runs, connects the library with it. The library also ends by
    /// itself when the application object is destroyed.
    static void initDebug();
    /// Takes back one initDebug(); the last one stops the library. Main thread. Surplus calls are absorbed,
    /// and nothing at all happens while a receiver for all modules is installed.
    static void exitDebug();
    /// @}

    /// \name Modules
    /// @{

    /// Makes a module and returns its id, which stays valid until the last exitDebug() or a reset; -1 without
    /// a table.
    ///
    /// It starts without classes and levels, at clipping level 0. The name "DebugServerClient" first resets
    /// the whole table, or makes one if there is none: a remote client mirrors another process with it, and
    /// gets id 27.
    static moduleId createModule(const char *name, const char *description);
    /// Renames a module. \a name stands in the line header; \a description in the keys of its settings.
    static void setModuleDescription(moduleId module, const char *name, const char *description);
    /// The name, without the characters ':' ',' '<' '>' and outer blanks, of a module that was asked about at
    /// least once; otherwise empty.
    static QString getModuleName(moduleId module);
    /// The header prefixes of all modules in the order of their ids ("<   KLV-Kernel> "), empty for unused
    /// modules.
    ///
    /// \a count gets their number; \a ids, if not null, an array with the ids. Arrays and texts are made with
    /// new[] and belong to the caller, who may use releaseModuleNames(). Null without a table.
    static const char **getModuleNames(int *count, int **ids = nullptr);
    /// Frees what getModuleNames() returned; null pointers are fine.
    static void releaseModuleNames(const char **names, int count, const int *ids = nullptr);
    /// @}

    /// \name Classes and levels
    /// @{

    /// Describes the classes of a module with \a count texts, each a literal piece of the line header; a
    /// count of -1: the array ends with a null pointer. Then applies the module's saved classes (setting: its
    /// description followed by "DebugClasses", default "all").
    static void setMessageClassDescriptions(moduleId module, int count, const char **descriptions);
    static void setMessageClassDescriptions(moduleId module, int count, char **descriptions);
    /// The descriptions and, in \a count, their number; null and 0 without a table. The array stays valid.
    static const char **getMessageClassDescriptions(moduleId module, int *count);
    /// The same for levels (setting: description followed by "DebugLevel", default "critical").
    static void setMessageLevelDescriptions(moduleId module, int count, const char **descriptions);
    static void setMessageLevelDescriptions(moduleId module, int count, char **descriptions);
    static const char **getMessageLevelDescriptions(moduleId module, int *count);

    /// Enables one class; -1 enables all of the module, -2 disables all.
    static void enableMessageClassType(moduleId module, int cls);
    /// Disables one class; -1 disables all of the module, -2 enables all.
    static void disableMessageClassType(moduleId module, int cls);
    /// Enables exactly the classes in \a names: "none" or "all" anywhere in it, else a comma-separated
    /// list of beginnings of class names. Blanks count, letter case does not.
    static void enableClasses(moduleId module, const QString &names);
    /// "all", "none" or the list of enabled classes; "none" for an unknown module, empty without a table.
    static QString getEnabledMessageClasses(moduleId module);
    /// Sets the clipping level by name: "release" silences the module, "full" lets everything through, else
    /// the last level whose description contains \a name. Letter case does not count, nor, if no description
    /// fits, do the characters ':' ',' '<' '>' and outer blanks.
    static void enableLevel(moduleId module, const QString &name);
    /// Name of the clipping level, "release" if it is negative, empty if it has no description.
    static QString getEnabledMessageLevel(moduleId module);
    /// Sets the highest level that the module lets through; too high a value is lowered to its last level.
    static void setClippingLevel(moduleId module, int level);
    /// 0 without a table, -1 for an unknown module.
    static int getClippingLevel(moduleId module);

    /// Whether a message would be printed. Made for hot paths: takes no lock for classes 0 to 63 of a module
    /// that exists and was asked about before, while any module can print.
    ///
    /// Level 0 passes whatever its class. Without a table: true. Ids beyond the table: false.
    static bool isActive(moduleId module, int level, int cls);
    /// The highest level that a message of this class may have at the moment; -1 if none. 0 while no module
    /// can print at all, and in smoke-test mode; 1 without a table.
    static int getActiveLevel(moduleId module, int cls);
    /// @}

    /// \name Printing
    /// @{

    /// Prints \a text if isActive() allows it, one output line per line of text; a line feed at the end adds
    /// none.
    ///
    /// The lines of one message stay together. \a file and \a line name the caller's source position; \a
    /// reserved is not interpreted. The call returns when file, receiver and line tap have the line, and the
    /// standard output has it or, with a Qt application, the queue of the GUI thread. Without a table the
    /// text goes to the system log, where '%' starts a conversion: write "%%" for a literal one.
    static void println(moduleId module, int cls, const QString &text, int level, int reserved = 0,
                        const char *file = nullptr, int line = -1);
    /// Sends a finished line through the filters to the sinks, without asking isActive(). Works without a
    /// table, too.
    static void printFormattedString(moduleId module, int cls, int level, const QString &line);
    /// If the flag allowProgrammaticClear is set and there is a queue in the GUI thread: drops the lines that
    /// wait in it, at once, and asks the debug window to clear its text.
    static void clear();

    /// Gives the lines of one module, or of all present modules with -1, to \a receiver; null takes it away
    /// again.
    ///
    /// While a receiver for all modules is installed the library keeps its own notices to itself and
    /// exitDebug() does nothing. Nothing happens without a table.
    static void setOutputReceiver(moduleId module, OutputReceiver receiver);
    /// Lets through only lines in which the regular expression matches behind the first character; empty: all
    /// lines. A match at the very start does not count.
    static void setOutputFilter(const QString &pattern);
    static QString getOutputFilter();
    /// Lets through only lines that fit an entry of "module|text;module|text...": the line contains the text
    /// and, while module names are shown, the module. Empty: all lines.
    static void setLevelFilter(const QString &entries);
    static QString getLevelFilter();

    /// Names the output file; a relative name is relative to the working directory. It is written while the
    /// flag activateFileProtocol is set. The first line of a run starts it anew; if the flag was not set
    /// then, the old file is kept and appended to.
    static void setOutputFileName(const char *name);
    /// The name, cut at 2,047 characters, in a buffer of the calling thread that the thread's next call
    /// overwrites.
    static const char *getOutputFileName();
    /// Size in bytes beyond which the file is started anew; 0 or less: half of the free disk space.
    static void setMaxOutputFileSize(qint64 bytes);
    /// The value as it was set.
    static qint64 getMaxOutputFileSize();
    /// @}

    /// \name Settings
    /// @{

    /// Switches one display flag by its command value and prints the notice "KLV debug flag settings
    /// changed:".
    ///
    /// On/off: file output -1/-2, throw assertions -3/-4, time stamp -5/-6, thread -7/-8, module name -9/-10,
    /// console output -11/-12, clear by program -13/-14. Every other value changes nothing.
    static void setDisplayFlags(int command);
    /// The flag word: 1 file output, 2 module name, 4 class, 8 level, 16 throw assertions, 32 clear by
    /// program, 256 time stamp, 512 thread, 1024 console output. 14 before initDebug() and after exitDebug().
    static int getDisplayFlags();
    /// Switches every flag that has a keyword: on if \a text contains it, else off ("activateFileProtocol",
    /// "throwAssertion", "displayTimeStamp", "displayThreadID", "displayModuleName", "activateConsoleOutput",
    /// "allowProgrammaticClear"). "disableOutput" silences everything until the next change of a class or
    /// level.
    static void enableSettings(const QString &text);
    /// The keywords of all flags that are on, each with a comma behind it; enableSettings() takes it back.
    static QString getEnabledSettings();
    /// Stores the classes and level of a module in use as its settings, where they differ from the stored
    /// ones.
    static void makeCurrentSettingsDefault(moduleId module);
    /// @}

    /// \name What the host hands in
    /// The pointers are only stored: the host keeps the objects alive until it has replaced them or the last
    /// exitDebug() is done, and calls in progress have returned. Null takes a handler away.
    /// @{
    static void setUtilityCallbackHandler(IUtilityInterface *handler);
    static void setThreadCallbackHandler(IThraedInterface *handler);
    static void installKeyHandler(IKeyInterface *handler);
    static IKeyInterface *getKeyboardHandler();
    /// Takes the place of the library's message boxes; null: the boxes are back.
    static void installMessageBoxHandler(IMessageBoxInterface *handler);
    /// A debug window that stays the host's, used by each queue that is made from now on, until it is
    /// deleted. For a host that is built together with the library's widgets: this header does not declare
    /// the class.
    static void setExtWindow(DebugWindow *window);
    /// @}

    /// \name The road into the GUI thread
    ///
    /// Once a Qt application runs, the library makes a queue that lives in the application's thread. Lines
    /// wait in it and go on in batches; requests are carried out there in the order in which they came. The
    /// calls below do nothing, or only keep their value, while there is no queue.
    ///
    /// A thread that prints faster than the GUI thread can follow is slowed down: above 200 waiting lines
    /// every line costs its thread 10 ms, paid after the message when no lock is held.
    /// @{

    /// Tells the library that the event loop runs, or has ended. It notices by itself the first event that
    /// the loop handles, and QCoreApplication::aboutToQuit(); a host that runs its loop once more says so.
    /// Without a running loop message boxes and file selections are refused.
    static void eventLoopStarted();
    static void eventLoopFinished();
    /// The native id of the thread with the event loop, see QThread::currentThreadId(). Set by the library
    /// itself as soon as the loop handles its first event.
    static void setGuiThreadId(void *id);
    /// Title of the debug window; kept for a window that is made later, dropped without a queue.
    static void setWindowTitle(const QString &title);
    /// Shows the debug window and brings it to the front. The application must be a QApplication. The window
    /// also shows itself with the first lines that no remote client takes, unless the setting
    /// "noWindowOutput" of the group "DebugServer" is 1.
    static void showDebugWindow();
    /// Ask the debug window to show the present hooks and levels, or the present names and prefixes.
    static void queueRedraw();
    static void queueRebuild();

    /// Opens or closes the remote access for debug clients, in the GUI thread.
    static void setClientsAllowed(bool allowed);
    static bool clientsAllowed();
    /// Announces how many remote clients are connected. 0 switches the output on again; see
    /// enableSettings().
    static void setClientCount(int count);
    /// Server mode: this process is watched by another one. Some controls of the window are disabled.
    static void setServerMode(bool on);
    static bool isServer();
    /// Client mode: this process shows the lines of another one. It is never left. A GUI thread that prints
    /// too fast then handles events in between, where the event loop can tell them apart without those of
    /// sockets.
    static void setClientMode();
    static bool isClient();
    /// @}

    /// \name Message boxes and file selection
    ///
    /// Any thread may ask; the GUI thread shows. Another thread waits for the answer without a time limit, so
    /// it must not hold anything that the GUI thread needs. From inside a callback of the library, with the
    /// module table locked, other threads get no answer: a modal box is shown, but not waited for, anything
    /// else is refused, and the system log says so. Do not ask from a callback in the GUI thread: nobody can
    /// print until the user has answered. While a receiver for all modules is installed nothing is shown.
    ///
    /// The end of the library closes what is shown and answers -1.
    ///
    /// Buttons: 1 OK, 2 Cancel, 3 Yes, 4 No, 5 Abort, 6 Retry, 7 Ignore, 0 none; plus 16 for the default
    /// button. Icons: 0 none, 1 information, 2 warning, 3 critical, 4 question.
    /// @{

    /// Shows a box with a heading over its text; both may be rich text.
    ///
    /// \return Modal: the button that was pressed (1 to 7), -1 if the box was closed otherwise. Non-modal:
    /// the id of the box, as soon as it is shown. 0 if boxes are switched off (setting
    /// "enableMessageBoxes"), 1 if a handler took the text, -1 if no box can be shown; a line of output or of
    /// the system log then says why.
    static int debugMessageBox(const QString &caption, const QString &heading, const QString &message,
                               bool modal, int icon, int button0, int button1, int button2);
    /// The same without a heading: a message that is rich text and begins with one gives it away; any other
    /// message stands in the place of the heading.
    static int debugMessageBox(const QString &caption, const QString &message, bool modal, int icon,
                               int button0, int button1, int button2);
    /// Takes a non-modal box away. An id that is not, or no longer, shown does no harm.
    static void removeMessageBox(int id);
    /// Asks for an existing file, starting in \a directory; \a filter as in QFileDialog.
    ///
    /// \return The chosen path, empty if the user cancelled, the previous answer if nothing could be asked.
    /// It lives until the calling thread asks again or ends.
    static const QString &debugFileSelect(const QString &caption, const QString &directory,
                                          const QString &filter);
    /// @}

    /// \name Hooks
    ///
    /// Named entry points that the host, a user or a remote client triggers with a text. The handlers of a
    /// key run in the activating thread if the key was first installed as direct, else in a thread that is
    /// made for the activation. Keys and parameters are Latin-1. A null key, handler or object does nothing.
    /// @{

    /// Adds a handler; one that is there already is not added again. \a direct counts for the first handler
    /// of a key only. The host keeps the handler alive until it is removed and no activation runs it any
    /// more. exitDebug() forgets all hooks.
    static void installHook(const char *key, IHookInterface *handler, bool direct);
    /// Removes a handler; with its last handler the key is forgotten.
    static void removeHook(const char *key, IHookInterface *handler);
    /// Adds a plain function, never direct. Nothing happens while a receiver for all modules is installed.
    static void installCHookHandler(const char *key, void (*function)(char *, char *));
    /// Removes a function; null: all functions of the key.
    static void removeCHookHandler(const char *key, void (*function)(char *, char *));
    /// Adds a member function of an object, never direct: it runs in a thread of its own. It is not called
    /// any more once the object is destroyed; destroying it in the middle of a call is the host's to avoid.
    /// Prints a warning: prefer installHook().
    static void installCppHookHandler(const char *key, QObject *object,
                                      void (QObject::*method)(char *, char *));
    /// Removes a member function; null: any object, or any member function.
    static void removeCppHookHandler(const char *key, QObject *object,
                                     void (QObject::*method)(char *, char *));
    /// Runs the handlers of a key; an unknown key does nothing. A key that is not direct: the call does not
    /// wait for them. Nothing happens while a receiver for all modules is installed.
    static void activateHooks(const char *key, const char *parameters);
    /// The installed keys in the order of their bytes, but for the six that announce changes of the
    /// configuration; null and 0 without a table. The array belongs to the library and lives until the
    /// calling thread asks again or ends.
    static QString *getHooks(int &count);
    /// @}

    /// \name Measurements
    /// Counter ticks are those of IUtilityInterface::readCounter().
    /// @{

    /// Makes a stopwatch that reports on this module, class and level. The caller deletes it.
    static ressourceInfo *createMeasurement(moduleId module, int cls, int level);
    /// Starts and stops it; null does nothing. The functions of these names in <zorvan/exports.h> return the
    /// counter and the ticks since the start.
    static void startMeasurement(ressourceInfo *info);
    static void stopMeasurement(ressourceInfo *info);
    /// Prints the mean of all starts, with the change of tracked memory while memory is tracked:
    /// "current time200cycles needed"; label and unit bring their own blanks.
    static void dumpRessources(ressourceInfo *info);

    /// Starts or stops the timer of a stage of the hardware setting. One thread at a time.
    ///
    /// Timers run while they are armed, or while level 4 and class 1 of module 0 are active; only an armed
    /// run yields values. With \a second, the second pass over the hardware, timeMeasHardware counts as
    /// timeMeasHardwareSecondPass; without it the timers of frequency and level are not touched. A stop of
    /// timeMeasTotal prints all eight values; the one that ends the armed run keeps them, too.
    static void timeMeas4HwSetting(enumTimeMeas which, bool start, bool second);
    /// Appends the value of a stage in the last armed run, "<name><ticks> cycles\n"; of all eight with -1.
    static void gettimeMeas4HwSetting(QString &out, int which);
    /// Arms the timers for one run. To be called in a running total, as a remote command does: its end does
    /// not count, the next total is the one that is kept.
    static void enableSCPItimeMeas4HwSetting();
    /// @}
};

/// \name System log
/// Appends a time-stamped message to a pair of alternating files in the program-data folder. Works before
/// initDebug(), after exitDebug(), without Qt, and while static objects are destroyed. No newline is added.
/// @{

/// \a tag names the pair of files ("<tag>-0.log", "<tag>-1.log"), null: "GYX-syslog". \a file null: no source
/// position. \a arguments null: none, conversions print as zero or null and "%n" writes nothing.
ZORVAN_EXPORT void gyxLog(const char *tag, const char *file, int line, const char *format,
                          va_list *arguments);
/// The same for the default files, with the arguments behind the format.
ZORVAN_EXPORT void gyxLog(const char *file, int line, const char *format, ...) ZORVAN_PRINTF_FORMAT(3, 4);
/// @}

/// \name Assertions and trace points
/// @{

/// Reports a failed assertion: in the system log always; where the low-level properties "hasGraphicalGui" and
/// "releaseAssertEnabled" allow it, also to the user, who may go on, ignore it from now on, or end the
/// process (at once, with exit code 0).
///
/// The debug daemon asks the user; without one a box of the system does. Returns when the program is to go
/// on. Any thread; questions are asked one after another, without a time limit. Not to be called where
/// printing threads would have to wait for the answer, such as in receivers. \a file null: no source
/// position. In the log '%' starts a conversion: write "%%" for a literal one.
ZORVAN_EXPORT void gyxAssert(const QString &condition, const QString &message, const char *file, int line);

/// Notes a trace point in a history that keeps the newest lines, 10 kB of them, in memory. No file, no
/// allocation. Any thread, also while static objects are built and destroyed, but not in a signal handler: it
/// takes a lock, which the interrupted thread may hold. \a file null: no source position. A null
/// \a format, or one of more than 1,024 characters, is ignored; a line is cut at 4,095.
ZORVAN_EXPORT void logHistory(const char *file, int line, const char *format, va_list *arguments);
/// The same with the arguments behind the format.
ZORVAN_EXPORT void logHistory(const char *file, int line, const char *format, ...) ZORVAN_PRINTF_FORMAT(3, 4);
/// Appends the history to "/var/appdata/crashlog.txt", if that can be opened, and a notice to the system log.
/// For a process that is about to end after a fault: it waits a second at most for a thread that died while
/// it noted a trace point. After such a death logHistory() and fork() wait for ever.
ZORVAN_EXPORT void dumpLogHistory();
/// @}

/// \name Debug daemon
/// A separate program shows assertions and questions for processes that cannot show them. It is reached over
/// a connection on the loopback interface, set up when it is first needed.
/// @{

/// Finds the daemon, or starts it, and connects to it; once per process. May take nine seconds. Any thread.
///
/// \param[out] daemonPort, secondPort the announced ports, -1 if none; a later call leaves them alone
/// \param instanceName which daemon, null: "assertion"
/// \return whether a daemon was found or started
ZORVAN_EXPORT bool initDebugDaemon(int &daemonPort, int &secondPort, const char *instanceName);
/// Ends the process-level services: the daemon is told to end and the connection to it is closed, for good;
/// the next message to the system log allocates its channel anew. Takes up to two seconds with a connection.
/// exitDebug() calls it; a host that never calls initDebug() may call it at its end.
ZORVAN_EXPORT void exitDebugDaemon();
/// @}

/// \name Low-level properties
/// Ten integer switches, ids 0 to 9, kept in a file of the program-data folder and read once per process.
/// @{

/// The value, or \a defaultValue if it is not set (-1) or the id is out of range.
ZORVAN_EXPORT int getLowlevelIntegerProperty(int id, int defaultValue);
/// Stores a changed value and rewrites the file; -1: "not set". Nothing happens for an id out of range.
ZORVAN_EXPORT void setLowlevelIntegerProperty(int id, int value);
/// @}

} // namespace Zorvan

#include <zorvan/macros.h> // needs what is declared above
