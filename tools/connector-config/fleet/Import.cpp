#include "fleet/Import.hpp"

#include "display/Output.hpp"
#include "fleet/ImportedFile.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace connector_config {

using connector::configuration::fromOptionValue;
using connector::configuration::OptionValue;
using connector::etcd::Change;
using connector::etcd::Content;
using connector::etcd::Entry;
using connector::etcd::EtcdClient;
using connector::service::jsonText;

namespace {

constexpr std::size_t mostOperations = 128; // of a transaction

/// Compares exactly: types, and doubles that are equal to none.
bool isSame(const OptionValue& left, const OptionValue& right) {
    return jsonText(fromOptionValue(left)) == jsonText(fromOptionValue(right));
}

bool has(const Entry& entry, const OptionValue& value) {
    return entry.value && isSame(*entry.value, value);
}

/// @return the changes, sorted by their keys; each expects what `content` has
std::vector<Change> changesBetween(const Content& content, const OptionTable& wanted,
                                   bool deletes) {
    std::vector<Change> changes;
    for (const auto& [key, value] : wanted) {
        const auto entry = content.entries.find(key);
        if (entry == content.entries.end())
            changes.push_back({key, value, 0});
        else if (!has(entry->second, value))
            changes.push_back({key, value, entry->second.revision});
    }
    for (const auto& [key, entry] : content.entries) {
        if (deletes && wanted.count(key) == 0)
            changes.push_back({key, std::nullopt, entry.revision});
    }
    std::sort(changes.begin(), changes.end(),
              [](const Change& left, const Change& right) { return left.key < right.key; });
    return changes;
}

std::string linesOf(const std::vector<Change>& changes) {
    std::string lines;
    for (const Change& change : changes) {
        const char sign = !change.value ? '-' : change.expectedRevision == 0 ? '+' : '~';
        lines += sign;
        lines += ' ' + connector::service::escaped(change.key) + '\n';
    }
    return lines;
}

void tellIfSeveral(std::size_t changes) {
    const std::size_t transactions = (changes + mostOperations - 1) / mostOperations;
    if (transactions > 1)
        printNotice(std::to_string(changes) + " changes are written in " +
                    std::to_string(transactions) + " transactions of at most " +
                    std::to_string(mostOperations));
}

void write(EtcdClient& client, const std::vector<Change>& changes) {
    std::size_t done = 0;
    try {
        while (done < changes.size()) {
            const std::size_t count = std::min(mostOperations, changes.size() - done);
            const auto first = changes.begin() + static_cast<std::ptrdiff_t>(done);
            client.apply({first, first + static_cast<std::ptrdiff_t>(count)});
            done += count;
        }
    } catch (const std::exception& error) {
        throw std::runtime_error(std::string(error.what()) + "; " + std::to_string(done) + " of " +
                                 std::to_string(changes.size()) +
                                 " changes were written before it");
    }
}

} // namespace

void importFile(EtcdClient& client, const FleetArguments& arguments) {
    const OptionTable wanted = readImportedFile(arguments.file);
    const std::vector<Change> changes = changesBetween(client.read(), wanted, arguments.deletes);
    writeOutput(linesOf(changes));
    if (arguments.isDryRun)
        return;
    tellIfSeveral(changes.size());
    write(client, changes);
}

} // namespace connector_config
