#pragma once

#include <cstddef>
#include <string>

namespace Zorvan {

/// Expands a printf format that has no arguments, reading nothing that was not passed.
///
/// "%%" gives '%'; every other conversion prints as if its argument were zero or null ("%d" 0, "%s"
/// "(null)"), a '*' counts as 0, "%n" writes nothing. What is no conversion, such as a '%' at the end, is
/// kept as it stands. Width and precision are bounded to 4,095. Null gives an empty text. Any thread.
[[nodiscard]] std::string formatWithoutArguments(const char *format);
/// The same into \a buffer and without allocating: no NUL at the end, and nothing beyond \a capacity bytes.
/// Returns how many were written.
std::size_t formatWithoutArguments(char *buffer, std::size_t capacity, const char *format);

} // namespace Zorvan
