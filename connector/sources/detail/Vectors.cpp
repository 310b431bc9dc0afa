#include <connector/sources/detail/Vectors.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>
#include <boost/variant/static_visitor.hpp>

#include <algorithm>
#include <string>
#include <vector>

namespace connector::sources::detail {

namespace {

using configuration::OptionValue;

enum class Kind { Bool, Number, Text };

Kind kindOf(const OptionValue& scalar) {
    if (boost::get<bool>(&scalar) != nullptr)
        return Kind::Bool;
    return boost::get<std::string>(&scalar) != nullptr ? Kind::Text : Kind::Number;
}

/// @return a scalar; null for null, objects and arrays
const OptionValue* scalarOf(const Node* node) {
    return std::get_if<OptionValue>(&node->content);
}

/// Converts a number to T. A double represents every int and unsigned int exactly.
template <typename T>
struct NumberAs : boost::static_visitor<T> {
    T operator()(int number) const { return static_cast<T>(number); }
    T operator()(unsigned number) const { return static_cast<T>(number); }
    T operator()(double number) const { return static_cast<T>(number); }
    template <typename Other>
    T operator()(const Other&) const {
        return T(); // not a number: never passed
    }
};

template <typename T>
OptionValue numbers(const Node::Elements& elements) {
    std::vector<T> vector;
    vector.reserve(elements.size());
    for (const Node* const element : elements)
        vector.push_back(boost::apply_visitor(NumberAs<T>(), *scalarOf(element)));
    return vector;
}

template <typename T>
OptionValue copies(const Node::Elements& elements) {
    std::vector<T> vector;
    vector.reserve(elements.size());
    for (const Node* const element : elements)
        vector.push_back(boost::get<T>(*scalarOf(element)));
    return vector;
}

bool isInt(const Node* element) {
    return boost::get<int>(scalarOf(element)) != nullptr;
}

bool fitsUnsigned(const Node* element) {
    const int* const number = boost::get<int>(scalarOf(element));
    return number != nullptr ? *number >= 0 : boost::get<unsigned>(scalarOf(element)) != nullptr;
}

OptionValue numberVector(const Node::Elements& elements) {
    if (std::all_of(elements.begin(), elements.end(), isInt))
        return numbers<int>(elements);
    if (std::all_of(elements.begin(), elements.end(), fitsUnsigned))
        return numbers<unsigned>(elements);
    return numbers<double>(elements);
}

} // namespace

std::optional<OptionValue> vectorOf(const Node& node) {
    const auto* const elements = std::get_if<Node::Elements>(&node.content);
    if (elements == nullptr || elements->empty() || scalarOf(elements->front()) == nullptr)
        return std::nullopt;
    const Kind kind = kindOf(*scalarOf(elements->front()));
    const auto isOfKind = [kind](const Node* element) {
        return scalarOf(element) != nullptr && kindOf(*scalarOf(element)) == kind;
    };
    if (!std::all_of(elements->begin(), elements->end(), isOfKind))
        return std::nullopt;
    switch (kind) {
    case Kind::Bool:
        return copies<bool>(*elements);
    case Kind::Text:
        return copies<std::string>(*elements);
    case Kind::Number:
        return numberVector(*elements);
    }
    return std::nullopt;
}

} // namespace connector::sources::detail
