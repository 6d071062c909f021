#pragma once

#include "platform/files.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <thread>

#if defined(_WIN32)
inline int setenv(const char *name, const char *value, int)
{
    const auto wide = [](const char *utf8) { return std::filesystem::u8path(utf8).wstring(); };
    return _wputenv_s(wide(name).c_str(), wide(value).c_str());
}
inline int unsetenv(const char *name)
{
    return setenv(name, "", 1);
}
#endif

namespace Zorvan::platform::tests {

/// A folder of its own for a test; the path is UTF-8.
class TemporaryFolder
{
public:
    TemporaryFolder()
        : m_path(std::filesystem::temp_directory_path()
                 / ("zorvan-" + std::to_string(std::random_device{}())))
    {
        std::filesystem::create_directory(m_path);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder &) = delete;
    TemporaryFolder &operator=(const TemporaryFolder &) = delete;

    [[nodiscard]] std::string path() const { return m_path.u8string(); }
    [[nodiscard]] std::string operator/(const std::string &name) const
    {
        return (m_path / std::filesystem::u8path(name)).u8string();
    }

private:
    std::filesystem::path m_path;
};

/// Sets a variable of the environment, or removes it without a value, until the end of the scope.
class Variable
{
public:
    Variable(const char *name, const std::optional<std::string> &value)
        : m_name(name)
    {
        if (const char *before = std::getenv(name))
            m_before = before;
        set(value);
    }
    ~Variable() { set(m_before); }
    Variable(const Variable &) = delete;
    Variable &operator=(const Variable &) = delete;

    void set(const std::optional<std::string> &value)
    {
        if (value)
            setenv(m_name, value->c_str(), 1);
        else
            unsetenv(m_name);
    }

private:
    const char *m_name;
    std::optional<std::string> m_before;
};

inline std::string contentOf(const std::string &path)
{
    std::string content;
    return readFileStart(path.c_str(), 1U << 24, content) ? content : "(unreadable)";
}

/// Makes a shell script in its place; returns its path.
inline std::string makeScript(const std::string &path, const std::string &commands)
{
    replaceFile(path.c_str(), "#!/bin/sh\n" + commands);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return path;
}

/// For changes that nobody announces, such as the end of a program.
template <typename Condition>
bool eventually(Condition condition)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace Zorvan::platform::tests
