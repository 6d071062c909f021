#include "platform/files.h"
#include "platform/files_p.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Zorvan::platform {
namespace {

constexpr int closed = -1;

// The class keeps a handle wide enough for every system; here it is a descriptor.
int descriptor(std::intptr_t handle)
{
    return static_cast<int>(handle);
}

int openPath(const char *path, int flags)
{
    if (path == nullptr || *path == '\0')
        return closed;
    int result = closed;
    do {
        result = open(path, flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    } while (result == closed && errno == EINTR);
    return result;
}

// The descriptor is free after close() even if that was interrupted: never repeat it.
void closeDescriptor(int file)
{
    if (file != closed)
        close(file);
}

bool isAcceptable(int file, RegularFile::Accept accept)
{
    struct stat status;
    if (fstat(file, &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    if (accept == RegularFile::Accept::Any)
        return true;
    // Other users can give a file of ours a second name, in a folder that all may write to.
    return (status.st_uid == 0 || status.st_uid == geteuid()) && (status.st_mode & S_IWOTH) == 0
        && status.st_nlink <= 1;
}

} // namespace

const char pathSeparator = '/';

// O_NONBLOCK costs nothing and has no effect on regular files. On a pipe it keeps the host alive: without a
// reader the open fails instead of waiting for one, and a full pipe drops the text instead of stopping the
// writer.
AppendFile::AppendFile(const char *path, Start start)
    : m_handle(openPath(path, O_WRONLY | O_APPEND | O_CREAT | (start == Start::Empty ? O_TRUNC : 0)))
{}

AppendFile::~AppendFile()
{
    closeDescriptor(descriptor(m_handle));
}

bool AppendFile::isOpen() const
{
    return m_handle != closed;
}

std::int64_t AppendFile::size() const
{
    const off_t end = lseek(descriptor(m_handle), 0, SEEK_END);
    return end < 0 ? 0 : end;
}

bool AppendFile::write(std::string_view bytes)
{
    if (!isOpen())
        return false;
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor(m_handle), bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool AppendFile::truncate()
{
    return ftruncate(descriptor(m_handle), 0) == 0;
}

bool fileExists(const char *path)
{
    struct stat status;
    return path != nullptr && lstat(path, &status) == 0;
}

bool removeRegularFile(const char *path)
{
    struct stat status;
    return path != nullptr && lstat(path, &status) == 0 && S_ISREG(status.st_mode) && unlink(path) == 0;
}

RegularFile::RegularFile(const char *path, Accept accept)
    : m_handle(openPath(path, O_RDONLY | (accept == Accept::Trusted ? O_NOFOLLOW : 0)))
{
    if (isOpen() && !isAcceptable(descriptor(m_handle), accept)) {
        closeDescriptor(descriptor(m_handle));
        m_handle = closed;
    }
}

RegularFile::~RegularFile()
{
    closeDescriptor(descriptor(m_handle));
}

bool RegularFile::isOpen() const
{
    return m_handle != closed;
}

std::int64_t RegularFile::read(char *buffer, std::size_t capacity)
{
    ssize_t length = 0;
    do {
        length = ::read(descriptor(m_handle), buffer, capacity);
    } while (length < 0 && errno == EINTR);
    return length;
}

bool isFolder(const char *path)
{
    struct stat status;
    return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool isSeparator(char c)
{
    return c == '/';
}

void makeFolder(const char *path)
{
    mkdir(path, 0777);
}

} // namespace Zorvan::platform
