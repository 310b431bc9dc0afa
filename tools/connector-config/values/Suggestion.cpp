#include "values/Suggestion.hpp"

#include "values/EditDistance.hpp"

namespace connector_config {

namespace {

constexpr std::size_t farthest = 2;

} // namespace

std::string suggestion(const std::string& text, const std::vector<std::string>& candidates) {
    std::string nearest;
    std::size_t distance = farthest + 1;
    for (const std::string& candidate : candidates) {
        const std::size_t here = editDistance(text, candidate, distance);
        if (here < distance) {
            distance = here;
            nearest = ", did you mean " + candidate + '?';
        }
    }
    return nearest;
}

} // namespace connector_config
