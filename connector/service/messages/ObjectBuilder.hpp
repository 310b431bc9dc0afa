/// Builds the objects of a JSON text, within a limit of memory.
#pragma once

#include <connector/service/messages/TooManyElements.hpp>
#include <connector/service/text/JsonReader.hpp>

#include <Poco/JSON/Array.h>
#include <Poco/JSON/Object.h>

#include <cstddef>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

/// Receives the parts of a text like a JsonHandler. Afterwards result() has the value.
class ObjectBuilder {
public:
    /// @param newLimit  in bytes
    explicit ObjectBuilder(std::size_t newLimit = maxElementMemory) : limit(newLimit) {}

    /// @throws TooManyElements from all of these; the memory is then still held
    void begin(JsonContainer container);
    void end();
    void name(std::string_view text);
    void scalar(const JsonScalar& scalar);

    /// @return the value that was built; empty if there is none
    Poco::Dynamic::Var result() const;

private:
    /// A container that has not ended. Arrays are built at their end, when their size is known,
    /// because a growing array copies all of its elements.
    struct Open {
        Poco::JSON::Object::Ptr object; // null for an array
        std::string name;               // of the member whose value comes next
        std::size_t start;              // of the array's elements
    };

    void charge(std::size_t bytes);
    void chargeText(std::size_t length);
    void add(const Poco::Dynamic::Var& value);
    Poco::JSON::Array::Ptr takeArray(std::size_t start);

    std::size_t limit;
    std::vector<Open> open;
    std::deque<Poco::Dynamic::Var> elements; // of all open arrays, and the value of the text
    std::size_t held = 1024;                 // bytes, with those of this object
    std::size_t longest = 0;                 // text, in bytes
};

} // namespace connector::service
