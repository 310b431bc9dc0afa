#include "fleet/Fleet.hpp"

#include "display/Output.hpp"
#include "display/Terminal.hpp"
#include "display/TextTable.hpp"
#include "fleet/EtcdOptions.hpp"
#include "fleet/ExportDocument.hpp"
#include "fleet/Import.hpp"
#include "values/ValueText.hpp"
#include "values/WrongArguments.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <connector/configuration/properties/Lint.hpp>
#include <connector/etcd/EtcdClient.hpp>

#include <Poco/JSON/Array.h>

#include <sstream>
#include <stdexcept>

namespace connector_config {

using connector::configuration::properties::propertyLine;
using connector::etcd::Change;
using connector::etcd::Content;
using connector::etcd::Entry;
using connector::etcd::EtcdClient;
using connector::etcd::Written;
using connector::service::escaped;
using connector::service::jsonText;
using connector::service::makeObject;

namespace {

Written transact(EtcdClient& client, const std::vector<Change>& changes) {
    try {
        return client.apply(changes);
    } catch (const std::invalid_argument& error) {
        throw WrongArguments(error.what());
    }
}

ExitStatus put(EtcdClient& client, const std::vector<Assignment>& assignments) {
    std::vector<Change> changes;
    for (const Assignment& assignment : assignments)
        changes.push_back({assignment.key, assignment.value, {}});
    writeOutput(std::to_string(transact(client, changes).revision) + '\n');
    return Success;
}

ExitStatus erase(EtcdClient& client, const std::set<std::string>& keys) {
    std::vector<Change> changes;
    for (const std::string& key : keys)
        changes.push_back({key, std::nullopt, {}});
    writeOutput(std::to_string(transact(client, changes).erased) + '\n');
    return Success;
}

std::vector<std::string> unreadableKeys(const Content& content) {
    std::vector<std::string> keys;
    for (const auto& [key, entry] : content.entries) {
        if (!entry.value)
            keys.push_back(key);
    }
    return keys;
}

std::string asProperties(const OptionTable& options) {
    std::string lines;
    for (const auto& [key, value] : options)
        lines += propertyLine(key, plainText(value)) + '\n';
    return lines;
}

/// Writes nothing if a value is missing: part of an export would look like a whole one.
ExitStatus exportOptions(EtcdClient& client, FleetArguments::Format format) {
    const Content content = client.read();
    const std::vector<std::string> unreadable = unreadableKeys(content);
    for (const std::string& key : unreadable)
        printError("Value cannot be read: " + key);
    if (!unreadable.empty())
        return Failure;
    OptionTable options;
    for (const auto& [key, entry] : content.entries)
        options.emplace(key, *entry.value);
    writeOutput(format == FleetArguments::Format::Json ? exportDocument(options)
                                                       : asProperties(options));
    return Success;
}

std::string hexadecimal(std::uint64_t number) {
    std::ostringstream text;
    text << std::hex << number;
    return text.str();
}

std::string statusJson(const Content& content, const std::vector<std::string>& unreadable) {
    Poco::JSON::Array::Ptr keys = new Poco::JSON::Array;
    for (const std::string& key : unreadable)
        keys->add(key);
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("state", "current");
    object->set("revision", content.revision);
    object->set("clusterId", hexadecimal(content.clusterId));
    object->set("keys", content.entries.size() - unreadable.size());
    object->set("unreadable", keys);
    object->set("failure", Poco::Dynamic::Var());
    return jsonText(object) + '\n';
}

std::string statusText(const Content& content, const std::vector<std::string>& unreadable) {
    TextTable table;
    table.add({{"state"}, {"current"}});
    table.add({{"revision"}, {std::to_string(content.revision)}});
    table.add({{"cluster"}, {hexadecimal(content.clusterId)}});
    table.add({{"keys"}, {std::to_string(content.entries.size() - unreadable.size())}});
    for (const std::string& key : unreadable)
        table.add({{"unreadable"}, {escaped(key)}});
    return table.text(terminalOfOutput());
}

std::string failedStatusText(const std::string& failure, bool isJson) {
    if (isJson) {
        Poco::JSON::Object::Ptr object = makeObject();
        object->set("state", "stale");
        object->set("failure", failure);
        return jsonText(object) + '\n';
    }
    TextTable table;
    table.add({{"state"}, {"stale"}});
    table.add({{"failure"}, {escaped(failure)}});
    return table.text(terminalOfOutput());
}

ExitStatus status(EtcdClient& client, bool isJson) {
    try {
        const Content content = client.read();
        const std::vector<std::string> unreadable = unreadableKeys(content);
        writeOutput(isJson ? statusJson(content, unreadable) : statusText(content, unreadable));
        return Success;
    } catch (const OutputError&) {
        throw;
    } catch (const std::runtime_error& failure) {
        writeOutput(failedStatusText(failure.what(), isJson));
        return Failure;
    }
}

EtcdClient makeClient(const Arguments& arguments) {
    try {
        return EtcdClient(etcdOptionsOf(std::get<EtcdArgument>(arguments.sources.front())));
    } catch (const std::invalid_argument& error) {
        throw WrongArguments(error.what());
    }
}

} // namespace

ExitStatus runFleet(const Arguments& arguments) {
    EtcdClient client = makeClient(arguments);
    const FleetArguments& fleet = arguments.fleet;
    switch (fleet.action) {
    case FleetArguments::Action::Put:
        return put(client, fleet.assignments);
    case FleetArguments::Action::Delete:
        return erase(client, fleet.keys);
    case FleetArguments::Action::Import:
        importFile(client, fleet);
        break;
    case FleetArguments::Action::Export:
        return exportOptions(client, fleet.format);
    case FleetArguments::Action::Status:
        return status(client, arguments.json);
    }
    return Success;
}

} // namespace connector_config
