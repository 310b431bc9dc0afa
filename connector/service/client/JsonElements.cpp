#include <connector/service/client/JsonElements.hpp>

#include <connector/service/messages/ObjectBuilder.hpp>
#include <connector/service/text/JsonReader.hpp>
#include <connector/service/text/Utf8.hpp>

#include <limits>
#include <stdexcept>

namespace connector::service {

namespace {

constexpr std::size_t maxDepth = 64; // destructors of nested objects recurse
constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max() / 2;

/// Builds each value at a level of nesting.
class ElementHandler : public JsonHandler {
public:
    using OnElement = std::function<void(const Poco::Dynamic::Var&)>;

    /// @param newLevel  0 for the whole value, 1 for the elements of an array
    ElementHandler(std::size_t newLevel, const OnElement& newOnElement)
        : level(newLevel), onElement(newOnElement) {}

    void begin(JsonContainer container) override {
        if (depth < level && container != JsonContainer::Array)
            throw std::invalid_argument("Text is not an array");
        if (depth == maxDepth)
            throw std::invalid_argument("Text has more than 64 levels of nesting");
        if (depth++ >= level)
            builder.begin(container);
    }

    void end(std::size_t) override {
        if (--depth >= level)
            builder.end();
        finishElement();
    }

    void name(std::string_view text, std::size_t) override { builder.name(text); }

    void scalar(const JsonScalar& value, std::size_t) override {
        if (depth < level)
            throw std::invalid_argument("Text is not an array");
        builder.scalar(value);
        finishElement();
    }

private:
    void finishElement() {
        if (depth != level)
            return;
        onElement(builder.result());
        builder = ObjectBuilder(unlimited);
    }

    const std::size_t level;
    const OnElement& onElement;
    std::size_t depth = 0;
    ObjectBuilder builder{unlimited};
};

void read(std::string_view json, ElementHandler& handler) {
    if (!isUtf8(json))
        throw std::invalid_argument("Text is not valid UTF-8");
    readJson(json, handler);
}

} // namespace

Poco::Dynamic::Var readJsonValue(std::string_view json) {
    Poco::Dynamic::Var value;
    const ElementHandler::OnElement onElement = [&value](const auto& element) { value = element; };
    ElementHandler handler(0, onElement);
    read(json, handler);
    return value;
}

void readJsonArray(std::string_view json,
                   const std::function<void(const Poco::Dynamic::Var&)>& onElement) {
    ElementHandler handler(1, onElement);
    read(json, handler);
}

} // namespace connector::service
