#include <connector/configuration/typed/detail/EditDistance.hpp>

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

namespace connector::configuration::detail {

namespace {

void dropCommonEnds(std::string_view& left, std::string_view& right) {
    while (!left.empty() && !right.empty() && left.front() == right.front()) {
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    while (!left.empty() && !right.empty() && left.back() == right.back()) {
        left.remove_suffix(1);
        right.remove_suffix(1);
    }
}

} // namespace

std::size_t editDistance(std::string_view left, std::string_view right, std::size_t limit) {
    dropCommonEnds(left, right);
    const auto [shorter, longer] = std::minmax({left.size(), right.size()});
    if (longer - shorter >= limit)
        return limit;
    // Row by row: from the first bytes of `left` to the first bytes of `right`.
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        std::size_t least = row[0];
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
            least = std::min(least, row[j + 1]);
        }
        if (least >= limit)
            return limit;
    }
    return std::min(row.back(), limit);
}

} // namespace connector::configuration::detail
