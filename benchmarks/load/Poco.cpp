#include "LoadCase.hpp"

#include <Poco/AutoPtr.h>
#include <Poco/Util/PropertyFileConfiguration.h>

namespace {

class Loaded {
public:
    explicit Loaded(int entries)
        : configuration(new Poco::Util::PropertyFileConfiguration(
              bench::PropertyFile::ofEntries(entries).path)) {}

    std::string valueOf(const std::string& key) const { return configuration->getString(key, ""); }

    std::size_t size() const {
        Poco::Util::AbstractConfiguration::Keys keys;
        configuration->keys("section.option", keys);
        return keys.size();
    }

private:
    const Poco::AutoPtr<Poco::Util::PropertyFileConfiguration> configuration;
};

[[maybe_unused]] const bool registered = bench::addLoading<Loaded>("POCO");

} // namespace
