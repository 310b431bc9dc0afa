#include <connector/service/text/Explanation.hpp>

#include <connector/service/text/Json.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>

#include <algorithm>
#include <utility>

namespace connector::service {

namespace {

using configuration::SourceAnswer;

bool hasValue(const SourceAnswer& answer) {
    return answer.value.has_value();
}

bool isWritable(const SourceAnswer& answer) {
    return answer.servesKey && !answer.readOnly;
}

Poco::JSON::Object::Ptr jsonOf(const Explanation& explanation, const SourceAnswer& answer) {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("name", answer.name);
    object->set("order", answer.order);
    object->set("group", answer.group);
    object->set("readOnly", answer.readOnly);
    object->set("verdict", explanation.verdictOn(answer));
    if (answer.value)
        object->set("value", configuration::fromOptionValue(*answer.value));
    return object;
}

} // namespace

Explanation::Explanation(configuration::ConfigurationImpl& configuration, const Secrets& secrets,
                         const std::string& key)
    : Explanation(configuration.explain(key), secrets, key) {
}

Explanation::Explanation(std::vector<SourceAnswer> newAnswers, const Secrets& secrets,
                         std::string newKey)
    : key(std::move(newKey)), answers(std::move(newAnswers)),
      supplier(std::find_if(answers.cbegin(), answers.cend(), hasValue)),
      target(std::find_if(answers.cbegin(), answers.cend(), isWritable)) {
    for (SourceAnswer& answer : answers) {
        if (answer.value)
            answer.value = secrets.masked(key, *answer.value);
    }
}

bool Explanation::supplies(const SourceAnswer& answer) const {
    return supplier != answers.end() && &answer == &*supplier;
}

std::string Explanation::verdictOn(const SourceAnswer& answer) const {
    if (!answer.servesKey)
        return "does not serve this key";
    if (!answer.value)
        return "does not have it";
    return supplies(answer) ? "supplies the value" : "is shadowed by " + supplier->name;
}

const SourceAnswer* Explanation::targetOfSet() const {
    return target == answers.end() ? nullptr : &*target;
}

/// A new value takes effect unless a source consulted before the target has the key.
std::string Explanation::verdictOnSet() const {
    if (target == answers.end())
        return {};
    return target <= supplier ? "would take effect" : "would stay hidden behind " + supplier->name;
}

std::string Explanation::json() const {
    Poco::JSON::Array::Ptr sources = new Poco::JSON::Array;
    for (const SourceAnswer& answer : answers)
        sources->add(jsonOf(*this, answer));
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("key", key);
    object->set("sources", sources);
    if (target != answers.end()) {
        Poco::JSON::Object::Ptr set = makeObject();
        set->set("source", target->name);
        set->set("verdict", verdictOnSet());
        object->set("set", set);
    }
    return jsonText(object);
}

} // namespace connector::service
