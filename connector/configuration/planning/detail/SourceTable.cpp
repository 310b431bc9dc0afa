#include <connector/configuration/planning/detail/SourceTable.hpp>

#include <connector/configuration/sources/detail/LookupScope.hpp>

namespace connector::configuration::detail {

std::map<std::string, OptionValue> tableOf(ConfigurationSourceMap& record, LookupScope& lookup) {
    if (const OwnTable::Table* const table = record.table.in(lookup))
        return {table->begin(), table->end()};
    std::map<std::string, OptionValue> entries;
    for (const std::string& key : record.source->keys()) {
        if (record.source->has(key)) // a source may be asked for a value only after this
            entries.emplace_hint(entries.end(), key, record.source->get(key));
    }
    return entries;
}

} // namespace connector::configuration::detail
