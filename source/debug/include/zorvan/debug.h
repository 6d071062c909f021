#pragma once

/// \file
/// The C++ interface of the library: the facade Zorvan::Debug, the interfaces a host implements, and the
/// services that work without a Qt application.
///
/// A host sets its callbacks, calls Debug::initDebug(), creates its modules and prints; it calls
/// Debug::exitDebug() once for every Debug::initDebug(). See docs/embedding.md.
///
/// Unless a function says otherwise: any thread may call it; it never throws; bad input gives a neutral value
/// or does nothing; narrow strings are NUL-terminated Latin-1, copied when kept, and null counts as empty.

#include <zorvan/export.h>

#include <QString>

#include <cstdarg>

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
    virtual void showMessage(const QString &text);
};

/// Sees the keys and the state of the debug window first.
class ZORVAN_EXPORT IKeyInterface
{
public:
    virtual ~IKeyInterface();
    /// True if the key is used up.
    virtual bool keyEvent(int key, int modifiers);
    virtual void visibilityChanged(QWidget *window, bool visible);
    virtual void activationChanged(QWidget *window, bool active);
};

/// The facade: modules, printing, settings, life cycle. All members are static.
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
    /// the last level whose description contains \a name. Letter case does not count.
    static void enableLevel(moduleId module, const QString &name);
    /// Name of the clipping level, "release" if it is negative, empty if it has no description.
    static QString getEnabledMessageLevel(moduleId module);
    /// Sets the highest level that the module lets through; too high a value is lowered to its last level.
    static void setClippingLevel(moduleId module, int level);
    /// 0 without a table, -1 for an unknown module.
    static int getClippingLevel(moduleId module);

    /// Whether a message would be printed. Made for hot paths: takes no lock for classes 0 to 63, but for the
    /// first question about a module.
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
    /// reserved is not interpreted. The call returns when file, receiver, line tap and standard output have
    /// the line. Without a table the text goes to the system log, where '%' starts a conversion: write "%%"
    /// for a literal one.
    static void println(moduleId module, int cls, const QString &text, int level, int reserved = 0,
                        const char *file = nullptr, int line = -1);
    /// Sends a finished line through the filters to the sinks, without asking isActive(). Works without a
    /// table, too.
    static void printFormattedString(moduleId module, int cls, int level, const QString &line);
    /// Asks the debug window to clear its text, if the flag allowProgrammaticClear is set and a window can
    /// exist.
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
    /// exitDebug() is done. Null takes a handler away.
    /// @{
    static void setUtilityCallbackHandler(IUtilityInterface *handler);
    static void setThreadCallbackHandler(IThraedInterface *handler);
    static void installKeyHandler(IKeyInterface *handler);
    static IKeyInterface *getKeyboardHandler();
    static void installMessageBoxHandler(IMessageBoxInterface *handler);
    /// Title of the debug window; dropped while there is no road into the GUI thread.
    static void setWindowTitle(const QString &title);
    static void setGuiThreadId(void *id);
    /// A debug window made by the host, used from the first initDebug() that finds a Qt application; never
    /// deleted.
    static void setExtWindow(DebugWindow *window);
    static void showDebugWindow();
    /// Between these two calls the library refreshes its window.
    static void eventLoopStarted();
    static void eventLoopFinished();
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

/// Ends the process-level services: the channels of the system log are dropped and made anew by the next
/// message. exitDebug() calls it; a host that never calls initDebug() may call it at its end.
ZORVAN_EXPORT void exitDebugDaemon();

/// \name Low-level properties
/// Ten integer switches, ids 0 to 9, kept in a file of the program-data folder and read once per process.
/// @{

/// The value, or \a defaultValue if it is not set (-1) or the id is out of range.
ZORVAN_EXPORT int getLowlevelIntegerProperty(int id, int defaultValue);
/// Stores a changed value and rewrites the file; -1 means "not set". Nothing happens for an id out of range.
ZORVAN_EXPORT void setLowlevelIntegerProperty(int id, int value);
/// @}

} // namespace Zorvan
