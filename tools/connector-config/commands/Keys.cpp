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

std::string keys(OptionReader& reader, const Arguments& arguments) {
    const std::vector<std::string> keys = reader.keys(arguments.prefix);
    return arguments.json ? asJson(keys) : asLines(keys);
}

} // namespace connector_config
