#include "platform/files.h"
#include "platform/files_p.h"
#include "platform/text_windows_p.h"

#include <algorithm>
#include <array>
// clang-format off
#include <windows.h>
#include <aclapi.h> // needs the one before
// clang-format on

namespace Zorvan::platform {
namespace {

const std::intptr_t closed = reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);
constexpr DWORD sharedWithAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t longestTransfer = 1U << 30;

// The class keeps a number wide enough for every system; here it is a handle.
HANDLE fileHandle(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

// No security attributes: the handle is not inherited by child programs.
std::intptr_t openPath(const char *path, DWORD access, DWORD creation, DWORD flags = FILE_ATTRIBUTE_NORMAL)
{
    return reinterpret_cast<std::intptr_t>(
        CreateFileW(WidePath(path).get(), access, sharedWithAll, nullptr, creation, flags, nullptr));
}

void closeFile(std::intptr_t handle)
{
    if (handle != closed)
        CloseHandle(fileHandle(handle));
}

bool isDiskFile(std::intptr_t handle)
{
    return GetFileType(fileHandle(handle)) == FILE_TYPE_DISK;
}

/// Not a link, and no second name of a file that stands elsewhere.
bool isOneFile(HANDLE file)
{
    BY_HANDLE_FILE_INFORMATION status{};
    return GetFileInformationByHandle(file, &status) != 0
        && (status.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 && status.nNumberOfLinks <= 1;
}

bool isThisUser(PSID user)
{
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == 0)
        return false;
    alignas(TOKEN_USER) std::array<char, sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE> own{};
    DWORD length = 0;
    const bool known =
        GetTokenInformation(token, TokenUser, own.data(), static_cast<DWORD>(own.size()), &length) != 0;
    CloseHandle(token);
    return known && EqualSid(reinterpret_cast<const TOKEN_USER *>(own.data())->User.Sid, user) != 0;
}

/// Owned by the user of this process, by the system or by its administrators.
bool hasTrustedOwner(HANDLE file)
{
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR description = nullptr;
    if (GetSecurityInfo(file, SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION, &owner, nullptr, nullptr, nullptr,
                        &description)
        != ERROR_SUCCESS)
        return false;
    const bool trusted = IsWellKnownSid(owner, WinLocalSystemSid) != 0
        || IsWellKnownSid(owner, WinBuiltinAdministratorsSid) != 0 || isThisUser(owner);
    LocalFree(description);
    return trusted;
}

bool isAcceptable(std::intptr_t handle, RegularFile::Accept accept)
{
    if (!isDiskFile(handle))
        return false;
    return accept == RegularFile::Accept::Any
        || (isOneFile(fileHandle(handle)) && hasTrustedOwner(fileHandle(handle)));
}

DWORD attributes(const char *path)
{
    return GetFileAttributesW(WidePath(path).get());
}

DWORD transferSize(std::size_t bytes)
{
    return static_cast<DWORD>(std::min(bytes, longestTransfer));
}

} // namespace

const char pathSeparator = '\\';

// Without the right to write data elsewhere the system puts each write at the end, whatever others append.
AppendFile::AppendFile(const char *path, Start start)
    : m_handle(openPath(path, FILE_APPEND_DATA, start == Start::Empty ? CREATE_ALWAYS : OPEN_ALWAYS))
{}

AppendFile::~AppendFile()
{
    closeFile(m_handle);
}

bool AppendFile::isOpen() const
{
    return m_handle != closed;
}

std::int64_t AppendFile::size() const
{
    LARGE_INTEGER bytes{};
    return GetFileSizeEx(fileHandle(m_handle), &bytes) == 0 ? 0 : bytes.QuadPart;
}

bool AppendFile::write(std::string_view bytes)
{
    if (!isOpen())
        return false;
    while (!bytes.empty()) {
        DWORD written = 0;
        if (WriteFile(fileHandle(m_handle), bytes.data(), transferSize(bytes.size()), &written, nullptr) == 0
            || written == 0)
            return false;
        bytes.remove_prefix(written);
    }
    return true;
}

// The size can only be set through a handle that may write anywhere, which the one for appending must not be.
bool AppendFile::truncate()
{
    if (!isOpen() || !isDiskFile(m_handle))
        return false;
    const HANDLE file = ReOpenFile(fileHandle(m_handle), GENERIC_WRITE, sharedWithAll, 0);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    const bool done = SetEndOfFile(file) != 0;
    CloseHandle(file);
    return done;
}

bool fileExists(const char *path)
{
    return attributes(path) != INVALID_FILE_ATTRIBUTES;
}

bool removeRegularFile(const char *path)
{
    constexpr DWORD notRegular =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT | FILE_ATTRIBUTE_DEVICE;
    const DWORD found = attributes(path);
    return found != INVALID_FILE_ATTRIBUTES && (found & notRegular) == 0
        && DeleteFileW(WidePath(path).get()) != 0;
}

RegularFile::RegularFile(const char *path, Accept accept)
    : m_handle(openPath(path, GENERIC_READ, OPEN_EXISTING,
                        accept == Accept::Trusted ? FILE_FLAG_OPEN_REPARSE_POINT : FILE_ATTRIBUTE_NORMAL))
{
    if (isOpen() && !isAcceptable(m_handle, accept)) {
        closeFile(m_handle);
        m_handle = closed;
    }
}

RegularFile::~RegularFile()
{
    closeFile(m_handle);
}

bool RegularFile::isOpen() const
{
    return m_handle != closed;
}

std::int64_t RegularFile::read(char *buffer, std::size_t capacity)
{
    DWORD length = 0;
    return ReadFile(fileHandle(m_handle), buffer, transferSize(capacity), &length, nullptr) == 0 ? -1
                                                                                                 : length;
}

bool isFolder(const char *path)
{
    const DWORD found = attributes(path);
    return found != INVALID_FILE_ATTRIBUTES && (found & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isSeparator(char c)
{
    return c == '\\' || c == '/';
}

void makeFolder(const char *path)
{
    CreateDirectoryW(WidePath(path).get(), nullptr);
}

} // namespace Zorvan::platform
