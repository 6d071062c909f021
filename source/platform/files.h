#pragma once

/// Files as the log writers need them: appended by one write, shared with other processes, never inherited by
/// a child program. Standard library only; no function throws or reports through Qt.
///
/// Paths are NUL-terminated bytes: as they are on POSIX systems, UTF-8 on Windows. '/' separates folders on
/// both; Windows accepts '\' too. A null or empty path never names a file.

#include <cstdint>
#include <string>
#include <string_view>

namespace Zorvan::platform {

/// '/' on POSIX systems, '\' on Windows: for the paths that the library builds itself.
extern const char pathSeparator;

/// A file opened for append. Other processes may read, delete, move or append to it while it is open; the
/// descriptor is close-on-exec. Not for use by two threads at once.
class AppendFile
{
public:
    enum class Start {
        Continue, ///< keep what is there; create the file if it is missing
        Empty, ///< discard what is there
    };

    explicit AppendFile(const char *path, Start start = Start::Continue);
    ~AppendFile();
    AppendFile(const AppendFile &) = delete;
    AppendFile &operator=(const AppendFile &) = delete;

    [[nodiscard]] bool isOpen() const;
    /// Bytes in the file; 0 where a size makes no sense (a device, a pipe).
    [[nodiscard]] std::int64_t size() const;
    /// Writes all of \a bytes, by one system call unless the system takes only a part. False: some were not
    /// written.
    bool write(std::string_view bytes);
    /// Empties a regular file. False: it is not one, or the system refused.
    bool truncate();

private:
    std::intptr_t m_handle;
};

/// True if something has this name, whatever it is.
[[nodiscard]] bool fileExists(const char *path);

/// Deletes a regular file; links, devices and folders stay. False: nothing was deleted.
bool removeRegularFile(const char *path);

/// Deletes a regular file; where that is not possible (a link, a folder without the right to delete) empties
/// it.
void discardFile(const char *path);

/// Number of '\n' bytes in the file, read in blocks; -1 if it cannot be read.
[[nodiscard]] std::int64_t countLineFeeds(const char *path);

/// At most the first \a limitBytes bytes of a regular file. False: it cannot be read, \a content is empty.
bool readFileStart(const char *path, std::size_t limitBytes, std::string &content);

/// The whole of a file that other users could have planted. False, and \a content is empty: it cannot be
/// read, is a link or no regular file, has a second name, belongs neither to this process's user nor to the
/// administrator, has more than \a limitBytes bytes, or (POSIX) everybody may write to it.
bool readTrustedFile(const char *path, std::size_t limitBytes, std::string &content);

/// Replaces the content of the file by \a content with one write, creating the file if it is missing.
bool replaceFile(const char *path, std::string_view content);

/// Makes the folder and its missing parents. True if the folder exists afterwards.
bool makeFolders(const char *path);

} // namespace Zorvan::platform
