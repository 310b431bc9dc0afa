/// A request as the routes see it.
#pragma once

#include <connector/service/protocol/Response.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace connector::service {

struct Operation;

struct Request {
    const Operation* operation = nullptr;
    std::string key; ///< the rest of a path that names an option, decoded
    std::vector<std::pair<std::string, std::string>> parameters; ///< of the query, decoded
    std::string lastEventId;
    std::string body;

    /// @return the values of a parameter
    std::vector<std::string> all(const std::string& name) const;
};

/// Serves a request, on any thread.
/// @throws HttpError, and what the configuration throws
using Handler = std::function<Response(const Request&)>;

/// What a path can be asked to do.
struct Operation {
    std::string method;
    std::string path;                 ///< as in "/options/{key}"
    std::size_t route = 0;            ///< the same for all operations of a path; see Router::routes
    std::string summary;              ///< for people who read the description of the interface
    const char* schema = nullptr;     ///< of a success, among those of the description; or none
    const char* bodySchema = nullptr; ///< of the body; or none
    std::vector<std::string> parameters; ///< of the query; all others are refused
    bool repeatsParameters = false;
    const char* header = nullptr;                 ///< one that changes what the client gets
    const char* contentType = "application/json"; ///< of a success
    bool needsJson = false;                       ///< a body of another content type is refused
    bool isPublic = false;                        ///< served without the token
    bool isShared = false;    ///< all who wait for the same get the same response
    bool isImmediate = false; ///< served by the network thread; the handler must not wait
    Handler handler;          ///< none: the request is for a stream of events
};

} // namespace connector::service
