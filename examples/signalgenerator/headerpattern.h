#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace SignalGenerator {

/// A keyword such as "FREQuency": what is not in lower case is its short form. Both forms are kept in upper
/// case.
struct Keyword
{
    std::string shortForm;
    std::string longForm;

    explicit Keyword(std::string_view mixedCase);
    [[nodiscard]] bool matches(std::string_view upperCase) const;
};

/// A command header such as "[:SOURce]:FREQuency[:CW|:FIXed]": optional nodes in brackets, alternatives
/// between '|'.
class HeaderPattern
{
public:
    explicit HeaderPattern(std::string_view pattern);
    /// \a names are in upper case, each in its long or short form.
    [[nodiscard]] bool matches(const std::vector<std::string> &names) const;

private:
    struct Node
    {
        bool optional;
        std::vector<Keyword> alternatives;

        [[nodiscard]] bool matches(std::string_view upperCase) const;
    };
    void skipOptionalNodes(std::vector<bool> &places) const;

    std::vector<Node> m_nodes;
};

/// The keywords of a list such as "CW|SWEep|LIST".
[[nodiscard]] std::vector<Keyword> keywordList(std::string_view list);

[[nodiscard]] std::string toUpper(std::string_view text);

} // namespace SignalGenerator
