#include <connector/configuration/registry/Precedence.hpp>

#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <algorithm>

namespace connector::configuration::detail {

namespace {

/// Cuts groups off a key. Consecutive sources often have the same group, so the last result is
/// kept, in a buffer that keeps its memory from lookup to lookup.
class LocalKey {
public:
    LocalKey(const std::string& newKey, std::string& newBuffer) : key(newKey), buffer(newBuffer) {}

    /// @param groupLength  of a group with which the key begins
    const std::string& without(std::size_t groupLength) {
        if (groupLength == 0)
            return key;
        if (groupLength != lengthCutOff)
            buffer.assign(key, groupLength, std::string::npos);
        lengthCutOff = groupLength;
        return buffer;
    }

    /// Forgets the last result: another lookup may have used the buffer.
    void reset() { lengthCutOff = 0; }

private:
    const std::string& key;
    std::string& buffer;
    std::size_t lengthCutOff = 0;
};

} // namespace

std::string normalisedGroup(const std::string& group) {
    return group.empty() || group.back() == '.' ? group : group + '.';
}

SourceRecords::iterator insertionPoint(SourceRecords& records, int order) {
    return std::find_if(
        records.begin(), records.end(),
        [order](const ConfigurationSourceMap& record) { return record.order >= order; });
}

SourceRecords::iterator findByName(SourceRecords& records, const std::string& name) {
    return std::find_if(
        records.begin(), records.end(),
        [&name](const ConfigurationSourceMap& record) { return record.name == name; });
}

Supplier findSupplier(SourceRecords& records, const std::string& key, LookupScope& lookup,
                      std::string& localKeyBuffer) {
    LocalKey localKey(key, localKeyBuffer);
    bool sourcesWereAsked = false;
    for (ConfigurationSourceMap& record : records) {
        if (!record.serves(key))
            continue;
        if (const OwnTable::Table* const table = record.table.in(lookup)) {
            const auto entry = table->find(localKey.without(record.group.size()));
            if (entry != table->end())
                return {&record, &entry->second, sourcesWereAsked};
        } else {
            sourcesWereAsked = true;
            lookup.enter();
            if (record.source->has(record.localKey(key)))
                return {&record, nullptr, true};
            localKey.reset();
        }
    }
    return {nullptr, nullptr, sourcesWereAsked};
}

const ConfigurationSourceMap* findWritable(const SourceRecords& records, const std::string& key) {
    const auto record =
        std::find_if(records.begin(), records.end(), [&key](const ConfigurationSourceMap& record) {
            return !record.readOnly && record.serves(key);
        });
    return record == records.end() ? nullptr : &*record;
}

bool allAreOwnTables(const SourceRecords& records) {
    return std::all_of(records.begin(), records.end(),
                       [](const ConfigurationSourceMap& record) { return record.table.isKnown(); });
}

} // namespace connector::configuration::detail
