/// Boost.PropertyTree, which has neither layers nor a lock. It splits a key at its dots.
#include "Hits.hpp"
#include "Misses.hpp"

#include <boost/property_tree/ptree.hpp>
#include <boost/variant/get.hpp>

namespace {

using namespace bench::lookup;

class PropertyTreePeer {
public:
    explicit PropertyTreePeer(const Tables& tables) {
        const std::vector<Layer> layers = tables.make();
        for (const auto& [key, value] : layers.front()) {
            if (const int* const number = boost::get<int>(&value))
                tree.put(key, *number);
            else
                tree.put(key, boost::get<std::string>(value));
        }
    }

    template <typename T>
    T get(const std::string& key) const {
        return tree.get<T>(key);
    }

private:
    boost::property_tree::ptree tree;
};

[[maybe_unused]] const bool registered = [] {
    addAllHits<PropertyTreePeer>("PropertyTree", 1);
    return true;
}();

} // namespace
