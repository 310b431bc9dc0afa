#include "LoadCase.hpp"

#include <log4cplus/helpers/property.h>

namespace {

class Loaded {
public:
    explicit Loaded(int entries) : properties(bench::PropertyFile::ofEntries(entries).path) {}

    std::string valueOf(const std::string& key) const { return properties.getProperty(key); }
    std::size_t size() const { return properties.propertyNames().size(); }

private:
    const log4cplus::helpers::Properties properties;
};

[[maybe_unused]] const bool registered = bench::addLoading<Loaded>("log4cplus");

} // namespace
