/// POCO's configurations, which have layers, too. They store texts and convert them to numbers in
/// every lookup.
#include "Hits.hpp"
#include "Misses.hpp"

#include <Poco/AutoPtr.h>
#include <Poco/Util/LayeredConfiguration.h>
#include <Poco/Util/MapConfiguration.h>

#include <boost/variant/get.hpp>

namespace {

using namespace bench::lookup;

class PocoPeer {
public:
    explicit PocoPeer(const Tables& tables) {
        int priority = 0;
        for (const Layer& layer : tables.make()) {
            Poco::AutoPtr<Poco::Util::MapConfiguration> map(new Poco::Util::MapConfiguration);
            for (const auto& [key, value] : layer) {
                if (const int* const number = boost::get<int>(&value))
                    map->setInt(tables.group() + key, *number);
                else
                    map->setString(tables.group() + key, boost::get<std::string>(value));
            }
            layers->add(map, priority++, false);
        }
    }

    template <typename T>
    T get(const std::string& key) const {
        if constexpr (std::is_same_v<T, int>)
            return layers->getInt(key);
        else
            return layers->getString(key);
    }

private:
    Poco::AutoPtr<Poco::Util::LayeredConfiguration> layers{new Poco::Util::LayeredConfiguration};
};

[[maybe_unused]] const bool registered = [] {
    addAllHits<PocoPeer>("POCO");
    addMisses<PocoPeer>("POCO");
    return true;
}();

} // namespace
