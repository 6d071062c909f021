#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Zorvan {

/// The texts of a module's classes or levels. Never changed, never freed: callers keep pointers into it.
class Descriptions
{
public:
    explicit Descriptions(std::vector<std::string> texts);
    Descriptions(const Descriptions &) = delete;
    Descriptions &operator=(const Descriptions &) = delete;

    [[nodiscard]] int count() const { return static_cast<int>(m_texts.size()); }
    /// Empty for an index without a description.
    [[nodiscard]] std::string_view text(int index) const;
    /// The texts as the interface hands them out; null when there are none.
    [[nodiscard]] const char **array() const { return m_texts.empty() ? nullptr : m_pointers.data(); }

    /// The one object with these texts: setting the same texts again costs no memory.
    /// \a count -1: the array ends with a null pointer. A null array has no texts, a null text is empty.
    /// Callers hold the module table's lock, which also keeps the pool free while the process forks.
    static const Descriptions *intern(int count, const char *const *texts);
    static const Descriptions *none();

private:
    std::vector<std::string> m_texts;
    mutable std::vector<const char *> m_pointers; // the interface returns const char **
};

} // namespace Zorvan
