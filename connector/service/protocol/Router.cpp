#include <connector/service/protocol/Router.hpp>

#include <connector/service/protocol/Accept.hpp>
#include <connector/service/protocol/RequestTarget.hpp>

#include <Poco/Exception.h>
#include <Poco/URI.h>

#include <algorithm>
#include <set>

namespace connector::service {

namespace http = boost::beast::http;

namespace {

constexpr std::string_view keySuffix = "/{key}";

std::string_view viewOf(boost::beast::string_view text) {
    return {text.data(), text.size()};
}

bool takesKey(const Operation& operation) {
    const std::string& path = operation.path;
    return path.size() > keySuffix.size() &&
           path.compare(path.size() - keySuffix.size(), path.npos, keySuffix) == 0;
}

/// @return the part of the operation's path that a request must begin with, or be
std::string_view fixedPart(const Operation& operation) {
    const std::string_view path = operation.path;
    return takesKey(operation) ? path.substr(0, path.size() - keySuffix.size() + 1) : path;
}

bool fits(const Operation& operation, std::string_view path) {
    const std::string_view fixed = fixedPart(operation);
    return takesKey(operation) ? path.substr(0, fixed.size()) == fixed : path == fixed;
}

bool serves(const Operation& operation, std::string_view method) {
    return operation.method == method || (method == "HEAD" && operation.method == "GET");
}

std::string decodedPath(std::string_view text) {
    try {
        std::string result;
        Poco::URI::decode(std::string(text), result);
        return result;
    } catch (const Poco::Exception&) {
        throw HttpError(Status::bad_request, "Path is not percent-encoded");
    }
}

std::vector<std::pair<std::string, std::string>> decodedQuery(std::string_view text) {
    try {
        Poco::URI uri;
        uri.setRawQuery(std::string(text));
        return uri.getQueryParameters();
    } catch (const Poco::Exception&) {
        throw HttpError(Status::bad_request, "Query is not percent-encoded");
    }
}

void checkParameters(const Operation& operation, const Request& request) {
    std::set<std::string> seen;
    for (const auto& [name, value] : request.parameters) {
        const bool isKnown =
            std::count(operation.parameters.begin(), operation.parameters.end(), name) != 0;
        if (!isKnown)
            throw HttpError(Status::bad_request, "Unknown parameter: " + name);
        if (!seen.insert(name).second && !operation.repeatsParameters)
            throw HttpError(Status::bad_request, "Parameter is there twice: " + name);
    }
}

/// @return the values of all headers with the name, as one list (RFC 9110, 5.3)
std::string listOf(const RequestHead& head, http::field name) {
    std::string list;
    const auto [first, last] = head.equal_range(name);
    for (auto field = first; field != last; ++field) {
        list += list.empty() ? "" : ", ";
        list += viewOf(field->value());
    }
    return list;
}

/// Everything that can be said of a request before its body has arrived.
void checkHeaders(const Operation& operation, const RequestHead& head) {
    if (!accepts(listOf(head, http::field::accept), operation.contentType))
        throw HttpError(Status::not_acceptable,
                        std::string("Only this type can be sent: ") + operation.contentType);
    const auto type = onlyValue(head, "Content-Type");
    if (operation.needsJson && !type.empty() && !isJsonType(type))
        throw HttpError(Status::unsupported_media_type, "Content-Type must be application/json");
}

} // namespace

void Router::add(Operation operation) {
    const auto path = std::find(paths.begin(), paths.end(), operation.path);
    operation.route = static_cast<std::size_t>(path - paths.begin());
    if (path == paths.end())
        paths.push_back(operation.path);
    operations.push_back(std::move(operation));
}

Request Router::resolve(const RequestHead& head) const {
    const std::string_view path = pathOf(head);
    const Operation* const operation = find(viewOf(head.method_string()), path);
    if (operation == nullptr) {
        const std::string methods = allowed(path);
        if (methods.empty())
            throw HttpError(Status::not_found, "No such path; /openapi.json describes all paths");
        throw HttpError(Status::method_not_allowed, "Method must be one of these: " + methods, {},
                        "Allow: " + methods + "\r\n");
    }
    Request request;
    request.operation = operation;
    if (takesKey(*operation))
        request.key = decodedPath(path.substr(fixedPart(*operation).size()));
    const std::string_view target = viewOf(head.target());
    if (const std::size_t mark = target.find('?'); mark != target.npos)
        request.parameters = decodedQuery(target.substr(mark + 1));
    checkParameters(*operation, request);
    checkHeaders(*operation, head);
    request.lastEventId = onlyValue(head, "Last-Event-ID");
    return request;
}

std::string Router::keyIn(const RequestHead& head) const {
    const std::string_view path = pathOf(head);
    const auto found =
        std::find_if(operations.begin(), operations.end(), [path](const Operation& operation) {
            return takesKey(operation) && fits(operation, path);
        });
    if (found == operations.end())
        return {};
    try {
        return decodedPath(path.substr(fixedPart(*found).size()));
    } catch (const HttpError&) {
        return {};
    }
}

const Operation* Router::find(std::string_view method, std::string_view path) const {
    const auto found =
        std::find_if(operations.begin(), operations.end(), [&](const Operation& operation) {
            return fits(operation, path) && serves(operation, method);
        });
    return found == operations.end() ? nullptr : &*found;
}

std::string Router::allowed(std::string_view path) const {
    std::string methods;
    for (const Operation& operation : operations) {
        if (!fits(operation, path))
            continue;
        methods += methods.empty() ? "" : ", ";
        methods += operation.method == "GET" ? "GET, HEAD" : operation.method;
    }
    return methods;
}

std::vector<std::string> Request::all(const std::string& name) const {
    std::vector<std::string> values;
    for (const auto& parameter : parameters) {
        if (parameter.first == name)
            values.push_back(parameter.second);
    }
    return values;
}

std::string_view pathOf(const RequestHead& head) {
    std::string_view target = viewOf(head.target());
    target = target.substr(0, target.find('?'));
    return parseRequestTarget(target).path;
}

} // namespace connector::service
