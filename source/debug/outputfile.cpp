#include "debug/outputfile.h"

#include "platform/files.h"

#include <zorvan/debug.h>

#include <QDir>
#include <QFileInfo>
#include <QStorageInfo>

namespace Zorvan {

namespace {

constexpr qint64 fallbackMaximum = 10'000'000;
constexpr int fallbackMaximumMegabytes = 9; // as the message has always said
constexpr qint64 bytesPerMegabyte = 1'048'576;

/// Half of what the caller may still write to the disk that holds \a fileName; 0 if that is unknown.
qint64 halfOfFreeSpace(const QString &fileName)
{
    QDir folder = QFileInfo(fileName).absoluteDir();
    while (!folder.exists() && !folder.isRoot())
        folder.setPath(QFileInfo(folder.path()).path());
    const QStorageInfo disk(folder);
    return disk.isValid() && disk.bytesTotal() > 0 ? disk.bytesAvailable() / 2 : 0;
}

} // namespace

OutputFile &outputFile()
{
    static auto *file = new OutputFile; // never destroyed: static objects of the host may print
    return *file;
}

void OutputFile::setName(const QString &name)
{
    const platform::Locked guard(m_lock);
    m_name = name;
    m_path = name.toStdString(); // UTF-8
}

QString OutputFile::name() const
{
    const platform::Locked guard(m_lock);
    return m_name;
}

void OutputFile::setMaximumSize(qint64 bytes)
{
    const platform::Locked guard(m_lock);
    m_maximum = bytes;
    m_effectiveMaximum = notDerived;
}

qint64 OutputFile::maximumSize() const
{
    const platform::Locked guard(m_lock);
    return m_maximum;
}

void OutputFile::beginRun()
{
    const platform::Locked guard(m_lock);
    m_firstWritePending = true;
}

void OutputFile::append(std::string &line, Writing writing)
{
    const platform::Locked guard(m_lock);
    const bool beginsRun = m_firstWritePending;
    m_firstWritePending = false;
    if (beginsRun && writing == Writing::On)
        discard();
    if (m_effectiveMaximum == notDerived)
        deriveMaximum();
    if (writing == Writing::Off)
        return;
    line += "\r\n";
    write(line);
    line.resize(line.size() - 2);
}

void OutputFile::deriveMaximum()
{
    m_effectiveMaximum = m_maximum;
    if (m_effectiveMaximum <= 0) {
        // Asking for the disk goes through Qt, which may print: the answer until then keeps that from coming back.
        m_effectiveMaximum = fallbackMaximum;
        m_effectiveMaximum = halfOfFreeSpace(m_name);
        gyxLog(nullptr, 0, "Debug::println() found maximum allowed output file size of %d MBytes\n",
               static_cast<int>(m_effectiveMaximum / bytesPerMegabyte));
    }
    if (m_effectiveMaximum <= 0) {
        m_effectiveMaximum = fallbackMaximum;
        gyxLog(nullptr, 0, "Debug::println() fixed maximum allowed output file size to %d MBytes\n",
               fallbackMaximumMegabytes);
    }
}

void OutputFile::write(const std::string &bytes)
{
    {
        platform::AppendFile file(m_path.c_str());
        if (!file.isOpen())
            return;
        if (file.size() <= m_effectiveMaximum) {
            file.write(bytes);
            return;
        }
    }
    discard();
    platform::AppendFile(m_path.c_str()).write(bytes);
}

/// Deletes the file; where that is not possible (a link, a folder without the right to delete) it is emptied.
void OutputFile::discard()
{
    const char *const path = m_path.c_str();
    if (platform::fileExists(path) && !platform::removeRegularFile(path))
        platform::AppendFile(path).truncate();
}

} // namespace Zorvan
