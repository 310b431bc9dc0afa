#include <connector/configuration/sources/detail/OwnTable.hpp>

#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <typeinfo>

namespace connector::configuration::detail {

const OptionMap* OwnTable::of(const ConfigurationSource& source) {
    if (typeid(source) == typeid(InMemorySource))
        return &static_cast<const InMemorySource&>(source).values;
    if (typeid(source) == typeid(PropertyFileSource))
        return &static_cast<const PropertyFileSource&>(source).options;
    return nullptr;
}

} // namespace connector::configuration::detail
