#include <connector/configuration/planning/detail/Planner.hpp>

#include <connector/configuration/planning/detail/Proposal.hpp>
#include <connector/configuration/registry/Precedence.hpp>
#include <connector/configuration/sources/detail/LookupScope.hpp>

#include <optional>
#include <utility>

namespace connector::configuration::detail {

namespace {

using planning::OptionChange;

bool isSame(const std::optional<Option>& left, const std::optional<Option>& right) {
    if (!left || !right)
        return !left && !right;
    return left->source == right->source && planning::isSameValue(left->value, right->value);
}

class Comparison {
public:
    Comparison(SourceRecords& newBefore, Proposal& newAfter, LookupScope& newLookup)
        : before(newBefore), after(newAfter), lookup(newLookup) {}

    planning::Plan plan() {
        planning::Plan plan;
        for (const std::string& key : after.keys) {
            OptionChange change{key, optionIn(before, key), optionIn(after.records, key)};
            if (isSame(change.before, change.after))
                continue;
            // The loss of a key's last value is not reported.
            change.isAnnounced = change.after && after.announced.count(key) != 0;
            plan.changes.push_back(std::move(change));
        }
        for (const Option& write : after.writes) {
            const Supplier supplier = findSupplier(after.records, write.key, lookup, buffer);
            if (supplier.record != nullptr && supplier.record->name != write.source)
                plan.hidden.push_back({write, supplier.record->name});
        }
        return plan;
    }

private:
    std::optional<Option> optionIn(SourceRecords& records, const std::string& key) {
        const Supplier supplier = findSupplier(records, key, lookup, buffer);
        if (supplier.record == nullptr)
            return std::nullopt;
        return Option{key, supplier.record->name,
                      supplier.value != nullptr
                          ? *supplier.value
                          : supplier.record->source->get(supplier.record->localKey(key))};
    }

    SourceRecords& before;
    Proposal& after;
    LookupScope& lookup;
    std::string buffer; // of findSupplier
};

} // namespace

planning::Plan planOf(SourceRecords records, planning::Change&& change) {
    LookupScope lookup; // one for all queries, so that only the change makes a difference
    lookup.enter();
    for (ConfigurationSourceMap& record : records)
        record.table.in(lookup); // before the copy, so that it has the same tables
    Proposal proposal = propose(records, std::move(change), lookup);
    return Comparison(records, proposal, lookup).plan();
}

} // namespace connector::configuration::detail
