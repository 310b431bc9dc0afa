/// Glob patterns.
#pragma once

#include <string_view>
#include <vector>

namespace connector::service {

/// Matches a text that arrives byte by byte against a glob, in which "*" stands for any text and
/// "?" for any byte. Each byte takes time proportional to the length of the glob, however many
/// stars the glob has.
class GlobMatcher {
public:
    /// @param newGlob  must outlive this object
    explicit GlobMatcher(std::string_view newGlob);

    void append(char byte);

    /// @return whether the whole glob matches the whole text that has been appended so far
    bool matches() const { return matched.back(); }

private:
    void matchStarsWithNothing();

    std::string_view glob;
    std::vector<bool> matched; // [i]: the first i characters of the glob match the text so far
};

} // namespace connector::service
