#pragma once

#include <cerrno>

namespace Zorvan::platform {

/// Gives errno back as it was: a host may print between its own call and the question why that failed.
class ErrorNumberKept
{
public:
    ErrorNumberKept()
        : m_number(errno)
    {}
    ~ErrorNumberKept() { restore(); }
    ErrorNumberKept(const ErrorNumberKept &) = delete;
    ErrorNumberKept &operator=(const ErrorNumberKept &) = delete;

    void restore() const { errno = m_number; }

private:
    int m_number;
};

} // namespace Zorvan::platform
