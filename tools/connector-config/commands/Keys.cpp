#include "commands/Commands.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>

#include <Poco/JSON/Array.h>

namespace connector_config {

namespace {

std::string asJson(const std::vector<std::string>& keys) {
    Poco::JSON::Array::Ptr array = new Poco::JSON::Array;
    for (const std::string& key : keys)
        array->add(key);
    return connector::service::jsonText(array) + '\n';
}

std::string asLines(const std::vector<std::string>& keys) {
    std::string lines;
    for (const std::string& key : keys)
        lines += connector::service::escaped(key) + '\n';
    return lines;
}

} // namespace

std::vector<std::string> keysWithPrefix(ConfigurationImpl& configuration,
                                        const std::string& prefix) {
    const std::set<std::string> all = configuration.keys().get();
    std::vector<std::string> matching;
    for (auto key = all.lower_bound(prefix); key != all.end(); ++key) {
        if (key->compare(0, prefix.size(), prefix) != 0)
            break; // the set is sorted, so all matching keys are adjacent
        matching.push_back(*key);
    }
    return matching;
}

std::string keys(ConfigurationImpl& configuration, const Arguments& arguments) {
    const std::vector<std::string> keys = keysWithPrefix(configuration, arguments.prefix);
    return arguments.json ? asJson(keys) : asLines(keys);
}

} // namespace connector_config
