#pragma once

/// Source files are told apart by the address of their name. They get numbers in the order of their first
/// use.
namespace Zorvan::analysis {

/// The number of a source file, or of any other text: from 0 on; -1 for "<disabled>". Any thread. Only the
/// first use of a text takes the analyzer lock; all others read.
[[nodiscard]] int sourceIndex(const char *text);

} // namespace Zorvan::analysis
