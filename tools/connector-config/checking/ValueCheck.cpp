#include "checking/ValueCheck.hpp"

#include "checking/Number.hpp"

#include <connector/configuration/typed/OptionCast.hpp>

#include <Poco/Exception.h>
#include <Poco/JSON/Array.h>
#include <Poco/RegularExpression.h>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <vector>

namespace connector_config {

using connector::configuration::BadOptionCast;
using connector::configuration::optionCast;
using connector::configuration::OptionValue;

namespace {

using Poco::JSON::Array;
using Poco::JSON::Object;

template <typename T>
std::optional<T> cast(const OptionValue& value) {
    try {
        return optionCast<T>(value);
    } catch (const BadOptionCast&) {
        return std::nullopt;
    }
}

/// The elements of a list. A text is split as the library splits it.
class Elements : public boost::static_visitor<std::optional<std::vector<OptionValue>>> {
public:
    template <typename T>
    result_type operator()(const std::vector<T>& list) const {
        std::vector<OptionValue> elements;
        for (const auto& element : list)
            elements.emplace_back(static_cast<const T&>(element));
        return elements;
    }
    template <typename T>
    result_type operator()(const T& value) const {
        const auto texts = cast<std::vector<std::string>>(OptionValue(value));
        if (!texts)
            return std::nullopt;
        return (*this)(*texts);
    }
};

std::string textOf(const Poco::Dynamic::Var& json) {
    return json.isString() ? json.extract<std::string>() : Poco::Dynamic::Var::toString(json);
}

std::string typeOf(const Object& facets) {
    return facets.optValue<std::string>("type", "");
}

std::size_t length(const std::string& text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    }));
}

/// The library reads the names of an enumeration without regard to case. A schema does not tell
/// them from texts that have to be equal, so only what nobody would accept is refused.
bool isSameText(const std::string& left, const std::string& right) {
    const auto lower = [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [lower](char a, char b) { return lower(a) == lower(b); });
}

bool isSame(const OptionValue& value, const Poco::Dynamic::Var& allowed) {
    if (allowed.isBoolean())
        return cast<bool>(value) == allowed.convert<bool>();
    if (const std::optional<Number> number = numberOf(allowed)) {
        const std::optional<Number> own = numberOf(value);
        return own && !isLess(*own, *number) && !isLess(*number, *own);
    }
    const std::optional<std::string> text = cast<std::string>(value);
    return text && allowed.isString() && isSameText(*text, allowed.extract<std::string>());
}

std::string choiceProblem(const OptionValue& value, const Object& facets) {
    const Array::Ptr choice = facets.getArray("enum");
    if (!choice ||
        std::any_of(choice->begin(), choice->end(),
                    [&value](const Poco::Dynamic::Var& one) { return isSame(value, one); }))
        return "";
    std::string names;
    for (const Poco::Dynamic::Var& one : *choice)
        names += (names.empty() ? "" : ", ") + textOf(one);
    return "must be one of " + names;
}

std::string boundsProblem(const OptionValue& value, const Object& facets) {
    const std::optional<Number> minimum = numberOf(facets.get("minimum"));
    const std::optional<Number> maximum = numberOf(facets.get("maximum"));
    const std::optional<Number> number = numberOf(value);
    const bool isTooLow = minimum && number && (isLess(*number, *minimum) || isNan(*number));
    const bool isTooHigh = maximum && number && (isLess(*maximum, *number) || isNan(*number));
    if (!isTooLow && !isTooHigh)
        return "";
    if (minimum && maximum)
        return "must be between " + textOf(facets.get("minimum")) + " and " +
               textOf(facets.get("maximum"));
    return isTooLow ? "must be at least " + textOf(facets.get("minimum"))
                    : "must be at most " + textOf(facets.get("maximum"));
}

Poco::RegularExpression patternOf(const Object& facets) {
    return Poco::RegularExpression(facets.getValue<std::string>("pattern"),
                                   Poco::RegularExpression::RE_DOLLAR_ENDONLY);
}

/// The matcher is recursive. No duration or size is as long.
constexpr std::size_t longestMatched = 1000; // bytes

bool matches(const Poco::RegularExpression& pattern, const std::string& text) {
    if (text.size() > longestMatched)
        return false;
    try {
        Poco::RegularExpression::Match match;
        return pattern.match(text, match) > 0;
    } catch (const Poco::Exception&) {
        return false; // it took too many steps; no value of the library's types does
    }
}

std::string textProblem(const OptionValue& value, const Object& facets) {
    const std::optional<std::string> text = cast<std::string>(value);
    if (!text)
        return "";
    if (length(*text) < facets.optValue<std::size_t>("minLength", 0))
        return text->empty() ? "must not be empty" : "is too short";
    if (facets.has("pattern") && !matches(patternOf(facets), *text))
        return "does not match the pattern of the schema";
    return "";
}

std::string listProblem(const OptionValue& value, const Object& facets) {
    const auto elements = boost::apply_visitor(Elements(), value);
    if (!elements)
        return "";
    if (elements->size() < facets.optValue<std::size_t>("minItems", 0))
        return elements->empty() ? "must not be empty" : "has too few elements";
    const Object::Ptr items = facets.getObject("items");
    for (std::size_t i = 0; items && i < elements->size(); ++i) {
        const std::string problem = valueProblem((*elements)[i], *items);
        if (!problem.empty())
            return "has an element that " + problem + ", number " + std::to_string(i + 1);
    }
    return "";
}

/// @return whether the library converts the value to what the type stands for
bool converts(const OptionValue& value, const std::string& type) {
    if (type == "boolean")
        return cast<bool>(value).has_value();
    if (type == "integer")
        return integerOf(value).has_value();
    if (type == "number")
        return numberOf(value).has_value();
    if (type == "string")
        return cast<std::string>(value).has_value();
    if (type == "array")
        return boost::apply_visitor(Elements(), value).has_value();
    return true;
}

/// @return what is wrong beside the type
std::string facetProblem(const OptionValue& value, const Object& facets) {
    for (const auto problemOf : {choiceProblem, boundsProblem}) {
        const std::string problem = problemOf(value, facets);
        if (!problem.empty())
            return problem;
    }
    const bool isList = facets.has("items") || facets.has("minItems");
    return isList ? listProblem(value, facets) : textProblem(value, facets);
}

} // namespace

std::string valueProblem(const OptionValue& value, const Object& facets) {
    const std::string type = typeOf(facets);
    if (!converts(value, type))
        return "is not convertible to " + type;
    std::string problem = facetProblem(value, facets);
    const Array::Ptr others = facets.getArray("allOf");
    for (std::size_t i = 0; problem.empty() && others && i < others->size(); ++i) {
        if (const Object::Ptr other = others->getObject(static_cast<unsigned>(i)))
            problem = facetProblem(value, *other);
    }
    return problem;
}

void checkFacets(const Object& facets, const std::string& key) {
    try {
        typeOf(facets);
        facets.optValue<std::size_t>("minLength", 0);
        facets.optValue<std::size_t>("minItems", 0);
        if (facets.has("pattern"))
            patternOf(facets);
        if (const Object::Ptr items = facets.getObject("items"))
            checkFacets(*items, key);
        const Array::Ptr others = facets.getArray("allOf");
        for (std::size_t i = 0; others && i < others->size(); ++i) {
            if (const Object::Ptr other = others->getObject(static_cast<unsigned>(i)))
                checkFacets(*other, key);
        }
    } catch (const Poco::Exception& error) {
        throw std::runtime_error("Schema cannot be used: the option " + key + ": " +
                                 error.displayText());
    }
}

} // namespace connector_config
