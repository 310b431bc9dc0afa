#include <connector/configuration/sources/detail/OwnTable.hpp>

#include <connector/configuration/detail/OptionMap.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <typeinfo>

namespace connector::configuration::detail {

OwnTable::OwnTable(const ConfigurationSource& source) {
    if (typeid(source) == typeid(InMemorySource))
        table = &static_cast<const InMemorySource&>(source).values;
    else if (typeid(source) == typeid(PropertyFileSource))
        table = &static_cast<const PropertyFileSource&>(source).options;
    else if ((exchangeable = dynamic_cast<const SnapshotSource*>(&source)) != nullptr)
        takeNewest();
}

bool OwnTable::isExchanged() const {
    return exchangeable != nullptr &&
           exchangeable->address.load(std::memory_order_acquire) != table;
}

void OwnTable::refresh() {
    if (isExchanged() && LookupScope::current() == nullptr)
        takeNewest();
}

std::set<std::string> OwnTable::keys() const {
    return keysOf(*table);
}

const OwnTable::Table* OwnTable::exchangeableIn(LookupScope& lookup) {
    const std::uint64_t number = lookup.enter();
    if (number != lastLookup) {
        lastLookup = number;
        if (isExchanged())
            takeNewest();
    }
    return table;
}

void OwnTable::takeNewest() {
    held = exchangeable->newest();
    table = held.get();
}

} // namespace connector::configuration::detail
