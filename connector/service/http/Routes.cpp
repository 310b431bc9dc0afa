#include <connector/service/http/Routes.hpp>

#include <connector/service/text/Json.hpp>

#include <Poco/Exception.h>
#include <Poco/URI.h>

#include <algorithm>

namespace connector::service {

namespace {

constexpr std::string_view optionPrefix = "/options/";

void requireMethod(const std::string& method, const std::string& required) {
    if (method != required)
        throw HttpError(HTTPResponse::HTTP_METHOD_NOT_ALLOWED, "Method must be " + required,
                        required);
}

std::string decodedPath(const std::string& text) {
    try {
        std::string result;
        Poco::URI::decode(text, result);
        return result;
    } catch (const Poco::Exception&) {
        throw badRequest("Path is not percent-encoded");
    }
}

/// @return the value of the only "key" in a query
std::string queriedKey(const std::string& query) {
    std::vector<std::string> keys;
    try {
        Poco::URI uri;
        uri.setRawQuery(query);
        for (const auto& [name, value] : uri.getQueryParameters()) {
            if (name == "key")
                keys.push_back(value);
        }
    } catch (const Poco::Exception&) {
        throw badRequest("Query is not percent-encoded");
    }
    if (keys.size() != 1)
        throw badRequest("One key must be given, as in /watch?key=net.port");
    return keys.front();
}

Status statusOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::Done:
        return HTTPResponse::HTTP_OK;
    case Outcome::InvalidMessage:
        return HTTPResponse::HTTP_BAD_REQUEST;
    case Outcome::Refused:
        return HTTPResponse::HTTP_FORBIDDEN;
    case Outcome::TooLarge:
        return HTTPResponse::HTTP_REQUEST_ENTITY_TOO_LARGE;
    case Outcome::Failed:
        return HTTPResponse::HTTP_UNPROCESSABLE_ENTITY;
    case Outcome::Stopped:
        return HTTPResponse::HTTP_SERVICE_UNAVAILABLE;
    }
    return HTTPResponse::HTTP_INTERNAL_SERVER_ERROR; // unreachable
}

} // namespace

RouteResult Routes::handle(const std::string& method, const std::string& pathAndQuery,
                           const std::function<std::string()>& readBody) const {
    const std::size_t pathEnd = std::min(pathAndQuery.find('?'), pathAndQuery.size());
    const std::string path = pathAndQuery.substr(0, pathEnd);
    if (path == "/messages") {
        requireMethod(method, "POST");
        return executeMessage(readBody());
    }
    if (path == "/options") {
        requireMethod(method, "GET");
        return allOptions();
    }
    if (path.compare(0, optionPrefix.size(), optionPrefix) == 0) {
        requireMethod(method, "GET");
        return option(decodedPath(path.substr(optionPrefix.size())));
    }
    if (path == "/watch") {
        requireMethod(method, "GET");
        return WatchRequest{
            queriedKey(pathEnd < pathAndQuery.size() ? pathAndQuery.substr(pathEnd + 1) : "")};
    }
    throw HttpError(HTTPResponse::HTTP_NOT_FOUND,
                    "No such path; there are /messages, /options, /options/KEY and /watch?key=KEY");
}

Response Routes::executeMessage(const std::string& body) const {
    Reply reply = service.reply(body);
    return {statusOf(reply.outcome), std::move(reply.text), {}};
}

/// Converts option by option, because JSON objects take many times the memory of their text, and
/// builds one list at a time, so that many requests at once do not multiply the memory for
/// building.
Response Routes::allOptions() const {
    const std::lock_guard<std::mutex> lock(listing);
    std::string list = "[";
    for (const std::string& key : configuration.keys().get()) {
        list += list.size() > 1 ? "," : "";
        list += optionJson(key);
    }
    list += ']';
    return {HTTPResponse::HTTP_OK, std::move(list), {}};
}

Response Routes::option(const std::string& key) const {
    if (!configuration.has(key).get())
        throw HttpError(HTTPResponse::HTTP_NOT_FOUND,
                        "No option with the specified key was found: " + key);
    return {HTTPResponse::HTTP_OK, optionJson(key), {}};
}

std::string Routes::optionJson(const std::string& key) const {
    return jsonText(toJson(secrets.masked(configuration.getOption(key).get())));
}

} // namespace connector::service
