#include <connector/configuration/properties/lint/Lines.hpp>

#include <algorithm>

namespace connector::configuration::properties::detail {

Lines::Lines(std::string_view text) : starts{0} {
    for (std::size_t i = text.find_first_of("\r\n"); i < text.size();
         i = text.find_first_of("\r\n", i)) {
        i += text.compare(i, 2, "\r\n") == 0 ? 2 : 1;
        starts.push_back(i);
    }
}

std::size_t Lines::lineOf(std::size_t offset) const {
    return static_cast<std::size_t>(std::upper_bound(starts.begin(), starts.end(), offset) -
                                    starts.begin());
}

std::size_t Lines::columnOf(std::size_t offset) const {
    return offset - starts[lineOf(offset) - 1] + 1;
}

} // namespace connector::configuration::properties::detail
