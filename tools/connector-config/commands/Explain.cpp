#include "commands/Commands.hpp"

#include "display/TextTable.hpp"
#include "values/ValueText.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/Secrets.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>

#include <algorithm>

namespace connector_config {

using connector::service::escaped;
using connector::service::jsonText;
using connector::service::makeObject;
using connector::service::Secrets;

namespace {

using connector::configuration::SourceAnswer;

/// The answers of all sources, and the conclusions from them.
class Explanation {
public:
    Explanation(std::string newKey, std::vector<SourceAnswer> newAnswers)
        : key(std::move(newKey)), answers(std::move(newAnswers)),
          supplier(find([](const SourceAnswer& answer) { return answer.value.has_value(); })),
          target(find(
              [](const SourceAnswer& answer) { return answer.servesKey && !answer.readOnly; })) {}

    std::string asText(const Terminal& terminal) const;
    std::string asJson() const;

private:
    using Position = std::vector<SourceAnswer>::const_iterator;

    template <typename Condition>
    Position find(Condition condition) const {
        return std::find_if(answers.begin(), answers.end(), condition);
    }

    std::string verdictOn(const SourceAnswer& answer) const;

    /// A new value takes effect unless a source consulted before the target has the key.
    bool wouldTakeEffect() const { return target <= supplier; }
    std::string verdictOnSet() const;

    std::vector<Cell> rowOf(const SourceAnswer& answer) const;
    Poco::JSON::Object::Ptr jsonOf(const SourceAnswer& answer) const;
    Poco::JSON::Object::Ptr jsonOfSet() const;

    const std::string key;
    const std::vector<SourceAnswer> answers; // in the order of consultation
    const Position supplier;                 // the end if no source has the key
    const Position target;                   // of set; never the end: "override" accepts every key
};

std::string Explanation::verdictOn(const SourceAnswer& answer) const {
    if (!answer.servesKey)
        return "does not serve this key";
    if (!answer.value)
        return "does not have it";
    if (&answer == &*supplier)
        return "supplies the value";
    return "is shadowed by " + supplier->name;
}

std::string Explanation::verdictOnSet() const {
    return wouldTakeEffect() ? "would take effect" : "would stay hidden behind " + supplier->name;
}

std::vector<Cell> Explanation::rowOf(const SourceAnswer& answer) const {
    const bool supplies = answer.value && &answer == &*supplier;
    return {{escaped(answer.name)},
            {"order " + std::to_string(answer.order), Style::Secondary},
            {answer.group.empty() ? "" : "group " + escaped(answer.group), Style::Secondary},
            {answer.readOnly ? "read-only" : "", Style::Secondary},
            {escaped(verdictOn(answer)), supplies ? Style::Bold : Style::Plain},
            {answer.value ? displayText(*answer.value) : ""}};
}

std::string Explanation::asText(const Terminal& terminal) const {
    TextTable table;
    for (const SourceAnswer& answer : answers)
        table.add(rowOf(answer));
    return table.text(terminal) + "set " + escaped(key) + " would go to " + escaped(target->name) +
           " and " + escaped(verdictOnSet()) + '\n';
}

Poco::JSON::Object::Ptr Explanation::jsonOf(const SourceAnswer& answer) const {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("name", answer.name);
    object->set("order", answer.order);
    object->set("group", answer.group);
    object->set("readOnly", answer.readOnly);
    object->set("verdict", verdictOn(answer));
    if (answer.value)
        object->set("value", connector::configuration::fromOptionValue(*answer.value));
    return object;
}

Poco::JSON::Object::Ptr Explanation::jsonOfSet() const {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("source", target->name);
    object->set("verdict", verdictOnSet());
    return object;
}

std::string Explanation::asJson() const {
    Poco::JSON::Array::Ptr sources = new Poco::JSON::Array;
    for (const SourceAnswer& answer : answers)
        sources->add(jsonOf(answer));
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("key", key);
    object->set("sources", sources);
    object->set("set", jsonOfSet());
    return jsonText(object) + '\n';
}

} // namespace

std::string explain(ConfigurationImpl& configuration, const Arguments& arguments,
                    const Terminal& terminal) {
    std::vector<SourceAnswer> answers = configuration.explain(arguments.key);
    const Secrets secrets(arguments.secrets);
    for (SourceAnswer& answer : answers) {
        if (answer.value)
            answer.value = secrets.masked(arguments.key, *answer.value);
    }
    const Explanation explanation(arguments.key, std::move(answers));
    return arguments.json ? explanation.asJson() : explanation.asText(terminal);
}

} // namespace connector_config
