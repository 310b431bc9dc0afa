#include <connector/configuration/json/OptionValueJson.hpp>

#include <connector/configuration/detail/TypeTags.hpp>
#include <connector/configuration/json/detail/Utf.hpp>

#include <Poco/JSON/Array.h>

#include <algorithm>

namespace connector::configuration {

namespace {

using Poco::Dynamic::Var;
using Poco::JSON::Array;
using Poco::JSON::Object;

/// Makes the payload of a value.
class PayloadWriter : public boost::static_visitor<Var> {
public:
    template <typename Scalar>
    Var operator()(const Scalar& value) const {
        return value;
    }

    Var operator()(const std::u16string& value) const { return detail::toUtf8(value); }

    template <typename Element>
    Var operator()(const std::vector<Element>& values) const {
        Array::Ptr array = new Array;
        for (const Element& value : values)
            array->add((*this)(value));
        return array;
    }
};

template <typename Scalar>
OptionValue readScalar(const Object& object) {
    return object.optValue<Scalar>("value", Scalar());
}

template <>
OptionValue readScalar<std::u16string>(const Object& object) {
    return detail::toUtf16(object.optValue<std::string>("value", ""));
}

template <typename Element>
std::vector<Element> readElements(const Object& object) {
    std::vector<Element> values;
    const Array::Ptr array = object.getArray("value");
    const int size = array.isNull() ? 0 : static_cast<int>(array->size());
    for (int i = 0; i < size; ++i)
        values.push_back(array->optElement<Element>(static_cast<unsigned>(i), Element()));
    return values;
}

template <typename Element>
OptionValue readArray(const Object& object) {
    return readElements<Element>(object);
}

template <>
OptionValue readArray<std::u16string>(const Object& object) {
    std::vector<std::u16string> values;
    for (const std::string& text : readElements<std::string>(object))
        values.push_back(detail::toUtf16(text));
    return values;
}

using Reader = OptionValue (*)(const Object&);

/// In the order of the tags.
constexpr std::array<Reader, detail::typeTags.size()> readers = {
    readScalar<bool>,
    readScalar<int>,
    readScalar<unsigned int>,
    readScalar<double>,
    readScalar<std::u16string>,
    readScalar<std::string>,
    readArray<bool>,
    readArray<int>,
    readArray<unsigned int>,
    readArray<double>,
    readArray<std::string>,
    readArray<std::u16string>,
};

} // namespace

Object::Ptr fromOptionValue(const OptionValue& value) {
    Object::Ptr object = new Object;
    object->set("type", std::string(detail::typeTagOf(value)));
    object->set("value", boost::apply_visitor(PayloadWriter(), value));
    return object;
}

OptionValue toOptionValue(const Object::Ptr& object) {
    if (object.isNull())
        return std::string();
    const std::string tag = object->optValue<std::string>("type", "");
    const auto found = std::find(detail::typeTags.begin(), detail::typeTags.end(), tag);
    if (found == detail::typeTags.end())
        return std::string(); // a reader that does not know a tag gets a harmless value, no error
    return readers[static_cast<std::size_t>(found - detail::typeTags.begin())](*object);
}

} // namespace connector::configuration
