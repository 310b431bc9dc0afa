/// The cost of converting values to and from JSON, compared with code written by hand.
#include "Harness.hpp"

#include <connector/configuration/json/OptionValueJson.hpp>

#include <Poco/JSON/Array.h>

#include <string>
#include <vector>

namespace {

using connector::configuration::OptionValue;
using Poco::JSON::Array;
using Poco::JSON::Object;

/// Code written by hand for one alternative: it knows the type of the value and of the JSON.
template <typename T>
struct ByHand {
    const char* tag;

    Object::Ptr make(const T& value) const {
        Object::Ptr object = new Object;
        object->set("type", std::string(tag));
        object->set("value", value);
        return object;
    }

    OptionValue read(const Object::Ptr& object) const {
        if (object->getValue<std::string>("type") != tag)
            return {};
        return object->getValue<T>("value");
    }
};

template <typename T>
struct ByHand<std::vector<T>> {
    const char* tag;

    Object::Ptr make(const std::vector<T>& values) const {
        Array::Ptr array = new Array;
        for (const T& value : values)
            array->add(value);
        Object::Ptr object = new Object;
        object->set("type", std::string(tag));
        object->set("value", array);
        return object;
    }

    OptionValue read(const Object::Ptr& object) const {
        if (object->getValue<std::string>("type") != tag)
            return {};
        std::vector<T> values;
        const Array::Ptr array = object->getArray("value");
        for (unsigned int i = 0; i < array->size(); ++i)
            values.push_back(array->getElement<T>(i));
        return values;
    }
};

template <typename T>
void add(const std::string& description, const char* tag, const T& value) {
    const ByHand<T> byHand{tag};
    const OptionValue option(value);

    bench::add("json", "make " + description, "ours", [=](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(connector::configuration::fromOptionValue(option));
        if (byHand.read(connector::configuration::fromOptionValue(option)) != option)
            state.SkipWithError("another object was made");
    });
    bench::add("json", "make " + description, "POCO by hand", [=](benchmark::State& state) {
        for (auto _ : state)
            benchmark::DoNotOptimize(byHand.make(boost::get<T>(option)));
    });
    bench::add("json", "read " + description, "ours", [=](benchmark::State& state) {
        const Object::Ptr object = byHand.make(value);
        OptionValue read;
        for (auto _ : state)
            read = connector::configuration::toOptionValue(object);
        if (read != option)
            state.SkipWithError("another value was read");
    });
    bench::add("json", "read " + description, "POCO by hand", [=](benchmark::State& state) {
        const Object::Ptr object = byHand.make(value);
        OptionValue read;
        for (auto _ : state)
            read = byHand.read(object);
        if (read != option)
            state.SkipWithError("another value was read");
    });
}

const bool added = [] {
    add<bool>("bool", "bool", true);
    add<int>("int", "int", 8080);
    add<double>("double", "double", 0.5);
    add<std::string>("40 bytes", "string", bench::textNumber(1, 40));
    add<std::vector<int>>("100 ints", "intArray", std::vector<int>(100, 7));
    add<std::vector<std::string>>("100 texts", "stringArray",
                                  std::vector<std::string>(100, bench::textNumber(1, 12)));
    return true;
}();

} // namespace
