#include <connector/etcd/detail/JsonObject.hpp>

#include <nlohmann/json.hpp>

#include <utility>

namespace connector::etcd::detail {

namespace {

/// Collects the members of the top object. Does not recurse, however deep the text is.
class Collector : public nlohmann::json_sax<nlohmann::json> {
public:
    bool null() override { return add({}); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(std::int64_t{value}); }
    bool number_unsigned(number_unsigned_t value) override { return add(std::uint64_t{value}); }
    bool number_float(number_float_t value, const string_t& text) override {
        return add(JsonNumber{value, text});
    }
    bool string(string_t& value) override { return add(std::move(value)); }
    bool binary(binary_t&) override { return false; } // JSON has none

    bool start_object(std::size_t) override {
        if (depth == 0)
            object.isObject = true;
        else
            noteContainer(false);
        ++depth;
        return true;
    }
    bool start_array(std::size_t) override {
        noteContainer(true);
        ++depth;
        return true;
    }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }

    bool key(string_t& name) override {
        if (depth != 1)
            return true;
        member = name == "type" ? Member::Type : name == "value" ? Member::Value : Member::Other;
        ++(member == Member::Type    ? object.types
           : member == Member::Value ? object.values
                                     : object.others);
        return true;
    }

    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& error) override {
        object.isBeyondRange = error.id == 406;
        return false;
    }

    JsonObject take() { return std::move(object); }
    bool isBeyondRange() const { return object.isBeyondRange; }

private:
    enum class Member { Type, Value, Other };

    bool end() {
        --depth;
        return true;
    }

    bool isInPayload() const {
        return object.isObject && member == Member::Value &&
               (depth == 1 || (depth == 2 && object.isArray));
    }

    void noteContainer(bool isArray) {
        if (!object.isObject || member != Member::Value)
            return;
        if (depth == 1 && isArray)
            object.isArray = true;
        else
            object.isNested = true;
    }

    bool add(JsonScalar scalar) {
        if (isInPayload()) {
            object.payload.push_back(std::move(scalar));
        } else if (object.isObject && depth == 1 && member == Member::Type) {
            const auto* const text = std::get_if<std::string>(&scalar);
            object.isTypeText = text != nullptr;
            object.type = text != nullptr ? *text : "";
        }
        return true;
    }

    JsonObject object;
    std::size_t depth = 0;
    Member member = Member::Other; // of the top object, the last one
};

} // namespace

std::optional<JsonObject> readJsonObject(std::string_view text) {
    if (text.find('\0') != std::string_view::npos)
        return std::nullopt; // the parser takes a zero byte for the end of the text
    Collector collector;
    const bool isJson = nlohmann::json::sax_parse(text, &collector);
    if (!isJson && !collector.isBeyondRange())
        return std::nullopt;
    return collector.take();
}

} // namespace connector::etcd::detail
