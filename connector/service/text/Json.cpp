#include <connector/service/text/Json.hpp>

#include <connector/service/text/Escaping.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Stringifier.h>

#include <sstream>

namespace connector::service {

using connector::configuration::Option;
using connector::configuration::OptionValue;

namespace {

/// A copy of a value with its 8-bit texts repaired.
class Repair : public boost::static_visitor<OptionValue> {
public:
    template <typename T>
    OptionValue operator()(const T& value) const {
        return value;
    }
    OptionValue operator()(const std::string& text) const { return repaired(text); }
    OptionValue operator()(std::vector<std::string> texts) const {
        for (std::string& text : texts)
            text = repaired(text);
        return texts;
    }
};

} // namespace

Poco::JSON::Object::Ptr toJson(const OptionValue& value) {
    return connector::configuration::fromOptionValue(boost::apply_visitor(Repair(), value));
}

Poco::JSON::Object::Ptr toJson(const Option& option) {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("key", repaired(option.key));
    object->set("source", repaired(option.source));
    object->set("value", toJson(option.value));
    return object;
}

Poco::JSON::Object::Ptr makeObject() {
    return new Poco::JSON::Object(Poco::JSON_PRESERVE_KEY_ORDER);
}

std::string toText(const Poco::Dynamic::Var& document) {
    std::ostringstream text;
    Poco::JSON::Stringifier::stringify(document, text);
    return escapedJson(text.str());
}

} // namespace connector::service
