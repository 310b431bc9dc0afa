/// Checks options against a JSON Schema.
#pragma once

#include <connector/configuration/OptionValue.hpp>
#include <connector/service/text/Secrets.hpp>

#include <Poco/JSON/Object.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace connector_config {

using connector::configuration::OptionValue;

struct SchemaProblem {
    std::string key;
    std::string_view rule;
    std::string text;
};

/// Understands what OptionSchema::jsonSchema writes: an object with an option of each name. A value
/// is converted as the library converts it: the text of a property file can be a number or a list.
class SchemaCheck {
public:
    using Table = std::map<std::string, OptionValue>;

    /// @throws std::runtime_error if the text is no such schema
    SchemaCheck(const std::string& json, connector::service::Secrets newSecrets);

    /// @return unknown options, values that are not allowed, and required options that are missing
    std::vector<SchemaProblem> check(const Table& table) const;

private:
    void checkUnknown(const std::string& key, std::vector<SchemaProblem>& problems) const;
    void checkValue(const std::string& key, const OptionValue& value,
                    std::vector<SchemaProblem>& problems) const;

    const connector::service::Secrets secrets;
    Poco::JSON::Object::Ptr options; // by key
    std::vector<std::string> required;
    bool allowsUnknown = true;
};

} // namespace connector_config
