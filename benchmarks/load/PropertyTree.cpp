#include "LoadCase.hpp"

#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>

namespace {

class Loaded {
public:
    explicit Loaded(int entries) {
        boost::property_tree::read_ini(bench::PropertyFile::ofEntries(entries).path, tree);
    }

    std::string valueOf(const std::string& key) const {
        const auto entry = tree.find(key);
        return entry != tree.not_found() ? entry->second.data() : "";
    }
    std::size_t size() const { return tree.size(); }

private:
    boost::property_tree::ptree tree;
};

[[maybe_unused]] const bool registered = bench::addLoading<Loaded>("Boost.PropertyTree");

} // namespace
