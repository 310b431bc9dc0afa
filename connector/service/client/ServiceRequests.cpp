#include <connector/service/client/ServiceRequests.hpp>

#include <connector/service/text/Json.hpp>
#include <connector/service/text/Utf8.hpp>

#include <connector/configuration/json/OptionValueJson.hpp>

#include <algorithm>
#include <cctype>
#include <string_view>
#include <utility>
#include <vector>

namespace connector::service {

namespace http = boost::beast::http;
using configuration::OptionValue;

namespace {

void checkKey(const std::string& key) {
    if (!isUtf8(key))
        throw ServiceError("Text is not valid UTF-8: " + key, 0, key);
}

void checkText(const std::string& key, const std::string& text) {
    if (!isUtf8(text))
        throw ServiceError("Value is not valid UTF-8: " + key, 0, key);
}

bool isUnreserved(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' || byte == '_' || byte == '~';
}

std::string percentEncoded(const std::string& text) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char byte : text) {
        const auto number = static_cast<unsigned char>(byte);
        if (isUnreserved(byte))
            encoded += byte;
        else
            (encoded += '%').append({digits[number / 16], digits[number % 16]});
    }
    return encoded;
}

std::string pathOf(const char* collection, const std::string& key) {
    checkKey(key);
    return collection + percentEncoded(key);
}

/// Other values are always representable.
struct TextCheck : boost::static_visitor<void> {
    explicit TextCheck(const std::string& newKey) : key(newKey) {}

    template <typename Value>
    void operator()(const Value&) const {}
    void operator()(const std::string& text) const { checkText(key, text); }
    void operator()(const std::vector<std::string>& texts) const {
        for (const std::string& text : texts)
            checkText(key, text);
    }

    const std::string& key;
};

std::string jsonOf(const std::string& key, const OptionValue& value) {
    boost::apply_visitor(TextCheck(key), value);
    try {
        return jsonText(configuration::fromOptionValue(value));
    } catch (const std::runtime_error& error) {
        throw ServiceError(std::string(error.what()) + ": " + key, 0, key);
    }
}

} // namespace

ServiceRequests::ServiceRequests(std::string newAuthority, std::optional<std::string> newToken)
    : authority(std::move(newAuthority)), token(std::move(newToken)) {
}

ClientRequest ServiceRequests::get(const std::string& key) const {
    checkKey(key);
    Poco::JSON::Object::Ptr content = makeObject();
    content->set("key", key);
    return message("ConfigurationGet", jsonText(content));
}

ClientRequest ServiceRequests::list(const std::string& prefix) const {
    return make(Verb::get, "/options?prefix=" + percentEncoded(prefix));
}

ClientRequest ServiceRequests::keys() const {
    return message("ConfigurationKeys", "{}");
}

ClientRequest ServiceRequests::explain(const std::string& key) const {
    return make(Verb::get, pathOf("/explain/", key));
}

ClientRequest ServiceRequests::set(const std::string& key, const OptionValue& value) const {
    return make(Verb::put, pathOf("/options/", key), jsonOf(key, value));
}

ClientRequest ServiceRequests::reset(const std::string& key) const {
    return make(Verb::delete_, pathOf("/options/", key));
}

ClientRequest ServiceRequests::watch(const WatchedOptions& watched,
                                     const std::string& lastEventId) const {
    std::string target = "/watch";
    char separator = '?';
    for (const std::string& key : watched.keys)
        target += std::exchange(separator, '&') + pathOf("key=", key);
    for (const std::string& prefix : watched.prefixes)
        target += std::exchange(separator, '&') + pathOf("prefix=", prefix);
    ClientRequest request = make(Verb::get, target);
    request.set(http::field::accept, "text/event-stream");
    if (!lastEventId.empty())
        request.set("Last-Event-ID", lastEventId);
    return request;
}

ClientRequest ServiceRequests::make(Verb verb, const std::string& target,
                                    const std::string& body) const {
    ClientRequest request(verb, target, 11);
    request.set(http::field::host, authority);
    if (token)
        request.set(http::field::authorization, "Bearer " + *token);
    if (!body.empty()) {
        request.set(http::field::content_type, "application/json");
        request.body() = body;
        request.prepare_payload();
    }
    return request;
}

ClientRequest ServiceRequests::message(const std::string& type, const std::string& content) const {
    return make(Verb::post, "/messages",
                R"({"type":"connector/configuration/)" + type + R"(","message":)" + content + "}");
}

} // namespace connector::service
