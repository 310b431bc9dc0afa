#include <connector/service/client/ServiceResponses.hpp>

#include <connector/service/client/JsonElements.hpp>
#include <connector/service/text/Json.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <limits>
#include <stdexcept>

namespace connector::service {

using configuration::Option;
using configuration::OptionValue;
using configuration::SourceAnswer;
using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

namespace {

const Object& objectIn(const Var& value) {
    if (value.type() != typeid(Object::Ptr))
        throw NotUnderstood("an object is missing");
    return *value.extract<Object::Ptr>();
}

const Array& arrayIn(const Object& object, const char* name) {
    const Var value = object.get(name);
    if (value.type() != typeid(Array::Ptr))
        throw NotUnderstood(std::string("an array is missing: ") + name);
    return *object.getArray(name);
}

template <typename Type>
Type member(const Object& object, const char* name) {
    const Var value = object.get(name);
    if (value.type() != typeid(Type))
        throw NotUnderstood(std::string("a member is missing: ") + name);
    return value.extract<Type>();
}

/// JSON has neither infinite numbers nor NaN, so a service sends their text.
std::optional<double> nonFinite(const Var& payload) {
    using Limits = std::numeric_limits<double>;
    const std::string text = payload.isString() ? payload.extract<std::string>() : std::string();
    if (text == "inf" || text == "-inf")
        return text == "inf" ? Limits::infinity() : -Limits::infinity();
    return text == "nan" ? std::optional(Limits::quiet_NaN()) : std::nullopt;
}

/// Puts such numbers into a value that was read without them.
class NonFiniteReader : public boost::static_visitor<void> {
public:
    explicit NonFiniteReader(const Var& newPayload) : payload(newPayload) {}

    template <typename Other>
    void operator()(const Other&) const {}
    void operator()(double& number) const { number = nonFinite(payload).value_or(number); }
    void operator()(std::vector<double>& numbers) const {
        if (payload.type() != typeid(Array::Ptr))
            return;
        const Array& elements = *payload.extract<Array::Ptr>();
        for (unsigned i = 0; i < numbers.size(); ++i)
            numbers[i] = nonFinite(elements.get(i)).value_or(numbers[i]);
    }

private:
    const Var& payload;
};

/// The conversion is tolerant, but a service only sends what it would convert back to the same.
OptionValue valueIn(const Object& object) {
    const Object::Ptr json = member<Object::Ptr>(object, "value");
    OptionValue value = configuration::toOptionValue(json);
    const Var payload = json->get("value");
    boost::apply_visitor(NonFiniteReader(payload), value);
    const Object::Ptr back = configuration::fromOptionValue(value);
    for (const char* const name : {"type", "value"}) {
        if (jsonText(json->get(name)) != jsonText(back->get(name)))
            throw NotUnderstood("a value does not fit its type");
    }
    return value;
}

Option optionIn(const Object& object) {
    return {member<std::string>(object, "key"), member<std::string>(object, "source"),
            valueIn(object)};
}

SourceAnswer answerIn(const Object& object) {
    SourceAnswer answer{};
    answer.name = member<std::string>(object, "name");
    answer.group = member<std::string>(object, "group");
    answer.order = object.getValue<int>("order");
    answer.readOnly = member<bool>(object, "readOnly");
    answer.servesKey = member<std::string>(object, "verdict") != "does not serve this key";
    if (object.has("value"))
        answer.value = valueIn(object);
    return answer;
}

/// Calls a function that reads, and translates the exceptions of the readers below it.
template <typename Function>
auto reading(Function function) {
    try {
        return function();
    } catch (const Poco::Exception& error) {
        throw NotUnderstood(error.displayText());
    } catch (const std::invalid_argument& error) {
        throw NotUnderstood(error.what());
    }
}

/// Keeps the objects of the text for as long as they are read.
template <typename Function>
auto readingObject(std::string_view json, Function function) {
    return reading([&] {
        const Var value = readJsonValue(json);
        return function(objectIn(value));
    });
}

/// @param type  without "connector/configuration/"
Object::Ptr messageIn(const Object& reply, const std::string& type) {
    if (member<std::string>(reply, "type") != "connector/configuration/" + type)
        throw NotUnderstood("it is a reply to something else");
    return member<Object::Ptr>(reply, "message");
}

std::string textIn(const Object& object, const char* name) {
    const Var value = object.get(name);
    return value.type() == typeid(std::string) ? value.extract<std::string>() : std::string();
}

} // namespace

Option readOption(std::string_view json) {
    return readingObject(json, optionIn);
}

std::string readKey(std::string_view json) {
    return readingObject(json,
                         [](const Object& object) { return member<std::string>(object, "key"); });
}

std::optional<Option> readReplyWithOption(std::string_view json) {
    return readingObject(json, [](const Object& reply) -> std::optional<Option> {
        const Object::Ptr message = messageIn(reply, "ConfigurationOptionResponse");
        if (message->size() == 0)
            return std::nullopt;
        return optionIn(*message);
    });
}

std::vector<Option> readOptions(std::string_view json) {
    return reading([&] {
        std::vector<Option> options;
        readJsonArray(json, [&options](const Var& element) {
            options.push_back(optionIn(objectIn(element)));
        });
        return options;
    });
}

std::set<std::string> readReplyWithKeys(std::string_view json) {
    return readingObject(json, [](const Object& reply) {
        std::set<std::string> keys;
        const Object::Ptr message = messageIn(reply, "ConfigurationKeysResponse");
        for (const Var& key : arrayIn(*message, "keys"))
            keys.insert(keys.end(), key.convert<std::string>());
        return keys;
    });
}

std::vector<SourceAnswer> readExplanation(std::string_view json) {
    return readingObject(json, [](const Object& explanation) {
        std::vector<SourceAnswer> answers;
        for (const Var& source : arrayIn(explanation, "sources"))
            answers.push_back(answerIn(objectIn(source)));
        return answers;
    });
}

ServiceError readProblem(std::string_view json, unsigned status, const std::string& statusLine) {
    try {
        return readingObject(json, [&](const Object& problem) {
            const std::string detail = textIn(problem, "detail");
            return ServiceError(detail.empty() ? statusLine : detail, status,
                                textIn(problem, "key"));
        });
    } catch (const NotUnderstood&) {
        return ServiceError(statusLine, status);
    }
}

} // namespace connector::service
