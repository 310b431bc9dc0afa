#include <connector/configuration/planning/Plan.hpp>

#include <algorithm>
#include <cmath>

namespace connector::configuration::planning {

namespace {

struct SameValue : boost::static_visitor<bool> {
    template <typename Left, typename Right>
    bool operator()(const Left&, const Right&) const {
        return false; // of different types
    }
    template <typename T>
    bool operator()(const T& left, const T& right) const {
        return left == right;
    }
    bool operator()(double left, double right) const {
        return left == right || (std::isnan(left) && std::isnan(right));
    }
    bool operator()(const std::vector<double>& left, const std::vector<double>& right) const {
        return std::equal(left.begin(), left.end(), right.begin(), right.end(), *this);
    }
};

} // namespace

std::vector<std::string> Plan::goneKeys() const {
    std::vector<std::string> keys;
    for (const OptionChange& change : changes) {
        if (!change.after)
            keys.push_back(change.key);
    }
    return keys;
}

bool isSameValue(const OptionValue& left, const OptionValue& right) {
    return boost::apply_visitor(SameValue(), left, right);
}

} // namespace connector::configuration::planning
