#pragma once

#include "platform/files.h"
#include "platform/lock.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <string>

namespace Zorvan {

/// The output file: opened and closed for every line, so that others can read, move or delete it at any time
/// and a crash loses nothing. Started anew by the first line of a run and whenever it has grown beyond its
/// maximum.
///
/// Callers hold the module table's lock, which also keeps this one free while the process forks. A line that
/// cannot be written is lost to the file without a word.
class OutputFile
{
public:
    enum class Writing {
        Off, ///< only the bookkeeping of the first line
        On,
    };

    void setName(const QString &name) ZORVAN_EXCLUDES(m_lock);
    [[nodiscard]] QString name() const ZORVAN_EXCLUDES(m_lock);
    /// Bytes; 0 or less: derived from the free disk space at the next line.
    void setMaximumSize(qint64 bytes) ZORVAN_EXCLUDES(m_lock);
    /// As it was set.
    [[nodiscard]] qint64 maximumSize() const ZORVAN_EXCLUDES(m_lock);
    /// The next line begins a new run. With writing off it only marks the run as begun: the old file is kept
    /// then.
    void beginRun() ZORVAN_EXCLUDES(m_lock);
    /// Writes \a line (Latin-1, no line end) and CR LF. The line gets its end in place and is returned as it
    /// was.
    void append(std::string &line, Writing writing) ZORVAN_EXCLUDES(m_lock);
    /// Adds \a lines, with their ends, to whatever the file holds and however large it is.
    void appendSaved(const std::string &lines) ZORVAN_EXCLUDES(m_lock);

private:
    void deriveMaximum() ZORVAN_REQUIRES(m_lock);
    void write(const std::string &bytes) ZORVAN_REQUIRES(m_lock);
    void writeLine(platform::AppendFile &file, std::int64_t size, const std::string &bytes)
        ZORVAN_REQUIRES(m_lock);

    static constexpr qint64 notDerived = -1;

    mutable platform::RecursiveLock m_lock;
    QString m_name ZORVAN_GUARDED_BY(m_lock);
    std::string m_path ZORVAN_GUARDED_BY(m_lock); // m_name for the file system
    qint64 m_maximum ZORVAN_GUARDED_BY(m_lock) = notDerived;
    qint64 m_effectiveMaximum ZORVAN_GUARDED_BY(m_lock) = notDerived;
    bool m_endsTorn ZORVAN_GUARDED_BY(m_lock) = false; // in the middle of a line
    bool m_firstWritePending ZORVAN_GUARDED_BY(m_lock) = true;
    std::atomic<bool> m_nothingPending{false}; // neither the first write nor the maximum: lines may pass by
};

/// The one output file of the process.
OutputFile &outputFile();

} // namespace Zorvan
