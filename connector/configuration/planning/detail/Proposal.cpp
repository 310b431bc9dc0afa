#include <connector/configuration/planning/detail/Proposal.hpp>

#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/planning/Plan.hpp>
#include <connector/configuration/planning/detail/SourceTable.hpp>
#include <connector/configuration/registry/Precedence.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <algorithm>
#include <stdexcept>
#include <typeinfo>
#include <utility>

namespace connector::configuration::detail {

namespace {

using Table = std::map<std::string, OptionValue>;

class Proposer {
public:
    Proposer(SourceRecords&& records, LookupScope& newLookup) : lookup(newLookup) {
        proposal.records = std::move(records);
    }

    void operator()(planning::SetOption& change) {
        const auto target = targetOf(change);
        const ConfigurationSource& source = *target->source;
        if (typeid(source) == typeid(PropertyFileSource))
            throw std::runtime_error(errors::fileNotWritable);
        const std::string localKey = target->localKey(change.key);
        noteWrite(*target, localKey, change.value);
        // One entry is enough: no other key is looked up.
        replaceTable(*target, {{localKey, std::move(change.value)}});
    }

    void operator()(planning::AddSource& change) {
        if (change.source == nullptr)
            throw std::bad_typeid(); // as addSource does
        if (findByName(proposal.records, change.name) != proposal.records.end())
            throw std::invalid_argument(errors::sourceNameTaken + change.name);
        ConfigurationSourceMap record(change.name, normalisedGroup(change.group), change.order,
                                      change.readOnly, std::move(change.source));
        for (const auto& [key, value] : tableOf(record, lookup))
            noteWrite(record, key, value);
        proposal.records.insert(insertionPoint(proposal.records, change.order), std::move(record));
    }

    /// removeSource announces the keys as the source knows them, without its group, so the
    /// watchers of the keys with the group are not notified.
    void operator()(const planning::RemoveSource& change) {
        const auto record = named(change.name);
        for (const std::string& key : record->source->keys()) {
            proposal.keys.insert(record->group + key);
            proposal.announced.insert(key);
        }
        proposal.records.erase(record);
    }

    void operator()(planning::ReplaceTables& change) {
        for (auto& [name, table] : change.tables) {
            const auto record = named(name);
            noteDifferences(*record, tableOf(*record, lookup), {table.begin(), table.end()});
            replaceTable(*record, std::move(table));
        }
        std::stable_sort(
            proposal.writes.begin(), proposal.writes.end(),
            [](const Option& left, const Option& right) { return left.key < right.key; });
    }

    Proposal proposal;

private:
    using Position = SourceRecords::iterator;

    Position named(const std::string& name) {
        const Position record = findByName(proposal.records, name);
        if (record == proposal.records.end())
            throw std::runtime_error(errors::noSuchSource + name);
        return record;
    }

    /// The rules of both forms of set, with their failures.
    Position targetOf(const planning::SetOption& change) {
        SourceRecords& records = proposal.records;
        if (!change.source) {
            const ConfigurationSourceMap* const found = findWritable(records, change.key);
            if (found == nullptr)
                throw std::runtime_error(errors::noWritableSource + change.key);
            return records.begin() + (found - records.data());
        }
        const Position record = findByName(records, *change.source);
        if (record == records.end() || record->readOnly || !record->serves(change.key))
            throw std::runtime_error(errors::sourceNotWritable + change.key + ", " +
                                     *change.source);
        return record;
    }

    void noteWrite(const ConfigurationSourceMap& record, const std::string& localKey,
                   const OptionValue& value) {
        const std::string key = record.group + localKey;
        proposal.keys.insert(key);
        proposal.announced.insert(key);
        proposal.writes.push_back({key, record.name, value});
    }

    void noteDifferences(const ConfigurationSourceMap& record, const Table& before,
                         const Table& after) {
        for (const auto& [key, value] : after) {
            const auto previous = before.find(key);
            if (previous == before.end() || !planning::isSameValue(previous->second, value))
                noteWrite(record, key, value);
        }
        for (const auto& [key, value] : before) {
            if (after.count(key) == 0) {
                proposal.keys.insert(record.group + key);
                proposal.announced.insert(record.group + key);
            }
        }
    }

    static void replaceTable(ConfigurationSourceMap& record, planning::ReplaceTables::Table table) {
        record = ConfigurationSourceMap(record.name, record.group, record.order, record.readOnly,
                                        std::make_shared<InMemorySource>(std::move(table)));
    }

    LookupScope& lookup;
};

} // namespace

Proposal propose(SourceRecords records, planning::Change&& change, LookupScope& lookup) {
    Proposer proposer(std::move(records), lookup);
    std::visit(proposer, change);
    return std::move(proposer.proposal);
}

} // namespace connector::configuration::detail
