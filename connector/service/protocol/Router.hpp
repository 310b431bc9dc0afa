/// From the target of a request to the operation that serves it.
#pragma once

#include <connector/service/protocol/Request.hpp>
#include <connector/service/protocol/RequestParser.hpp>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace connector::service {

/// Does not change once the server runs, so any thread may use it.
class Router {
public:
    /// @param operation  its path may end with "/{key}"
    void add(Operation operation);

    /// @return the request, still without its body
    /// @throws HttpError  status 400, 404, 405, 406 or 415; the text says why
    Request resolve(const RequestHead& head) const;

    /// @return the key in the path of a request, whatever its method; empty if there is none, or
    ///         no such path
    std::string keyIn(const RequestHead& head) const;

    /// @return the operation that a target leads to, for what must be known even of a request that
    ///         is refused; null if there is none
    const Operation* find(std::string_view method, std::string_view path) const;

    const std::deque<Operation>& all() const { return operations; }

    /// @return the paths, each once
    const std::vector<std::string>& routes() const { return paths; }

private:
    std::string allowed(std::string_view path) const;

    std::deque<Operation> operations; // whose addresses stay
    std::vector<std::string> paths;
};

/// @return the part of a target before the query, without the http://AUTHORITY of the absolute form
std::string_view pathOf(const RequestHead& head);

} // namespace connector::service
