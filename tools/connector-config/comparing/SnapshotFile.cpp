#include "comparing/SnapshotFile.hpp"

#include "checking/FileContent.hpp"

#include <connector/configuration/json/Snapshot.hpp>

#include <Poco/Exception.h>
#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <unordered_map>

namespace connector_config {

using connector::configuration::ConfigurationImpl;
using connector::configuration::OptionValue;
using connector::configuration::SourceSnapshot;

namespace {

std::unordered_map<std::string, OptionValue> tableOf(const SourceSnapshot& source) {
    std::unordered_map<std::string, OptionValue> table;
    for (const auto& [key, entry] : source.entries)
        table.emplace(key, entry.value);
    return table;
}

std::vector<std::string> sourcesOf(ConfigurationImpl& configuration) {
    std::vector<std::string> names;
    for (const auto& answer : configuration.explain(""))
        names.push_back(answer.name);
    return names;
}

} // namespace

bool isSnapshot(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == text.npos || text[start] != '{')
        return false; // most files, without parsing them
    try {
        const auto document = Poco::JSON::Parser().parse(text);
        const auto object = document.extract<Poco::JSON::Object::Ptr>();
        return object->has("format") && object->has("sources");
    } catch (const Poco::Exception&) {
        return false;
    }
}

Snapshot parseSnapshot(const std::string& name, const std::string& text) {
    std::istringstream stream(text);
    try {
        return connector::configuration::readSnapshot(stream);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(name + ": " + error.what());
    }
}

Snapshot readSnapshotFile(const std::string& name) {
    return parseSnapshot(name, readFile(name));
}

void replaceSources(ConfigurationImpl& configuration, const Snapshot& snapshot) {
    for (const std::string& name : sourcesOf(configuration))
        configuration.removeSource(name).get();
    // Of equal orders, the source that is added last comes first.
    std::for_each(snapshot.rbegin(), snapshot.rend(), [&](const SourceSnapshot& source) {
        configuration
            .addInMemorySource(source.name, source.group, source.order, source.readOnly,
                               tableOf(source))
            .get();
    });
}

bool isMasked(const Snapshot& snapshot, const std::string& source, const std::string& key) {
    const auto found =
        std::find_if(snapshot.begin(), snapshot.end(),
                     [&](const SourceSnapshot& candidate) { return candidate.name == source; });
    if (found == snapshot.end() || key.compare(0, found->group.size(), found->group) != 0)
        return false;
    const auto entry = found->entries.find(key.substr(found->group.size()));
    return entry != found->entries.end() && entry->second.isMasked;
}

} // namespace connector_config
