#include "values/EditDistance.hpp"

#include <algorithm>

namespace connector_config {

// Skips what is equal, then tries the three ways to go on. Each costs one of the limit, so the
// recursion is at most `limit` deep.
std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit) {
    while (!left.empty() && !right.empty() && left.front() == right.front()) {
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    const auto [shorter, longer] = std::minmax({left.size(), right.size()});
    if (longer == 0 || limit == 0 || longer - shorter >= limit)
        return longer == 0 ? 0 : limit;
    std::size_t best = limit - 1;
    const auto attempt = [&best](std::string_view a, std::string_view b) {
        best = std::min(best, editDistance(a, b, best));
    };
    if (!left.empty() && !right.empty())
        attempt(left.substr(1), right.substr(1));
    if (!left.empty())
        attempt(left.substr(1), right);
    if (!right.empty())
        attempt(left, right.substr(1));
    return best + 1;
}

} // namespace connector_config
