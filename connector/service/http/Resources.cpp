#include <connector/service/http/Resources.hpp>

#include <connector/service/messages/RequestText.hpp>
#include <connector/service/text/Json.hpp>

#include <Poco/Exception.h>
#include <Poco/URI.h>

#include <algorithm>

namespace connector::service {

namespace {

constexpr std::string_view optionPrefix = "/options/";

HttpFailure badRequest(const std::string& text) {
    return HttpFailure(HTTPResponse::HTTP_BAD_REQUEST, text);
}

void requireMethod(const std::string& method, const std::string& wanted) {
    if (method != wanted)
        throw HttpFailure(HTTPResponse::HTTP_METHOD_NOT_ALLOWED, "Method must be " + wanted,
                          wanted);
}

std::string decoded(const std::string& text) {
    try {
        std::string result;
        Poco::URI::decode(text, result);
        return result;
    } catch (const Poco::Exception&) {
        throw badRequest("Path is not percent-encoded");
    }
}

/// @return the one "key" of a query
std::string keyOf(const std::string& query) {
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
    case Outcome::NoMessage:
        return HTTPResponse::HTTP_BAD_REQUEST;
    case Outcome::Refused:
        return HTTPResponse::HTTP_FORBIDDEN;
    case Outcome::Failed:
        return HTTPResponse::HTTP_UNPROCESSABLE_ENTITY;
    case Outcome::Stopped:
        return HTTPResponse::HTTP_SERVICE_UNAVAILABLE;
    }
    return HTTPResponse::HTTP_INTERNAL_SERVER_ERROR; // no such outcome
}

} // namespace

Answer Resources::answer(const std::string& method, const std::string& pathAndQuery,
                         const std::function<std::string()>& readBody) const {
    const std::size_t question = std::min(pathAndQuery.find('?'), pathAndQuery.size());
    const std::string path = pathAndQuery.substr(0, question);
    if (path == "/messages") {
        requireMethod(method, "POST");
        return answerMessage(readBody());
    }
    if (path == "/options") {
        requireMethod(method, "GET");
        return allOptions();
    }
    if (path.compare(0, optionPrefix.size(), optionPrefix) == 0) {
        requireMethod(method, "GET");
        return option(decoded(path.substr(optionPrefix.size())));
    }
    if (path == "/watch") {
        requireMethod(method, "GET");
        return WatchRequest{
            keyOf(question < pathAndQuery.size() ? pathAndQuery.substr(question + 1) : "")};
    }
    throw HttpFailure(
        HTTPResponse::HTTP_NOT_FOUND,
        "No such path; there are /messages, /options, /options/KEY and /watch?key=KEY");
}

Response Resources::answerMessage(const std::string& body) const {
    Reply reply = service.reply(body);
    return {statusOf(reply.outcome), std::move(reply.text), {}};
}

/// As text one by one, for the JSON objects of all options take many times the memory of their text;
/// and one list at a time, so that what its making takes on top of that is taken once, whoever asks.
Response Resources::allOptions() const {
    const std::lock_guard<std::mutex> lock(building);
    std::string list = "[";
    for (const std::string& key : configuration.keys().get()) {
        list += list.size() > 1 ? "," : "";
        list += jsonText(toJson(secrets.shown(configuration.getOption(key).get())));
    }
    list += ']';
    return {HTTPResponse::HTTP_OK, std::move(list), {}};
}

Response Resources::option(const std::string& key) const {
    if (!configuration.has(key).get())
        throw HttpFailure(HTTPResponse::HTTP_NOT_FOUND,
                          "No option with the specified key was found: " + key);
    return {HTTPResponse::HTTP_OK,
            jsonText(toJson(secrets.shown(configuration.getOption(key).get()))),
            {}};
}

} // namespace connector::service
