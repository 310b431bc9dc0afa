#include "Commands.hpp"

#include "display/Table.hpp"
#include "values/ValueText.hpp"
#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/Json.hpp>
#include <connector/service/text/Secrets.hpp>

#include <Poco/JSON/Array.h>

#include <algorithm>

namespace connector_config {

using connector::service::escaped;
using connector::service::makeObject;
using connector::service::repaired;
using connector::service::Secrets;
using connector::service::toJson;
using connector::service::toText;

namespace {

using connector::configuration::SourceAnswer;

/// What follows from the answers of all sources.
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

    /// A new value is seen unless a source before the one that takes it has the key.
    bool wouldTakeEffect() const { return target <= supplier; }
    std::string verdictOnSet() const;

    std::vector<Cell> rowOf(const SourceAnswer& answer) const;
    Poco::JSON::Object::Ptr jsonOf(const SourceAnswer& answer) const;
    Poco::JSON::Object::Ptr jsonOfSet() const;

    const std::string key;
    const std::vector<SourceAnswer> answers; // in the order of consultation
    const Position supplier;                 // the end if no source has the key
    const Position target;                   // of set; "override" at least takes every key
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
            {"order " + std::to_string(answer.order), Style::Quiet},
            {answer.group.empty() ? "" : "group " + escaped(answer.group), Style::Quiet},
            {answer.readOnly ? "read-only" : "", Style::Quiet},
            {escaped(verdictOn(answer)), supplies ? Style::Strong : Style::Plain},
            {answer.value ? shownText(*answer.value) : ""}};
}

std::string Explanation::asText(const Terminal& terminal) const {
    Table table;
    for (const SourceAnswer& answer : answers)
        table.add(rowOf(answer));
    return table.text(terminal) + "set " + escaped(key) + " would go to " + escaped(target->name) +
           " and " + escaped(verdictOnSet()) + '\n';
}

Poco::JSON::Object::Ptr Explanation::jsonOf(const SourceAnswer& answer) const {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("name", repaired(answer.name));
    object->set("order", answer.order);
    object->set("group", repaired(answer.group));
    object->set("readOnly", answer.readOnly);
    object->set("verdict", repaired(verdictOn(answer)));
    if (answer.value)
        object->set("value", toJson(*answer.value));
    return object;
}

Poco::JSON::Object::Ptr Explanation::jsonOfSet() const {
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("source", repaired(target->name));
    object->set("verdict", repaired(verdictOnSet()));
    return object;
}

std::string Explanation::asJson() const {
    Poco::JSON::Array::Ptr sources = new Poco::JSON::Array;
    for (const SourceAnswer& answer : answers)
        sources->add(jsonOf(answer));
    Poco::JSON::Object::Ptr object = makeObject();
    object->set("key", repaired(key));
    object->set("sources", sources);
    object->set("set", jsonOfSet());
    return toText(object) + '\n';
}

} // namespace

std::string explain(ConfigurationImpl& configuration, const Arguments& arguments,
                    const Terminal& terminal) {
    std::vector<SourceAnswer> answers = configuration.explain(arguments.key);
    const Secrets secrets(arguments.secrets);
    for (SourceAnswer& answer : answers) {
        if (answer.value)
            answer.value = secrets.shown(arguments.key, *answer.value);
    }
    const Explanation explanation(arguments.key, std::move(answers));
    return arguments.json ? explanation.asJson() : explanation.asText(terminal);
}

} // namespace connector_config
