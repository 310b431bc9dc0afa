/// A request that a worker serves.
#pragma once

#include <connector/service/network/Workers.hpp>
#include <connector/service/protocol/Request.hpp>

#include <functional>
#include <optional>

namespace connector::service {

/// @return the response of the request's operation; every failure is one, too
/// @throws std::bad_alloc
Response responseTo(const Request& request);

class RequestTask : public Task {
public:
    /// Called on the network thread; without a response if there was no memory.
    using Done = std::function<void(const std::optional<Response>&)>;

    RequestTask(Request newRequest, Done newDone)
        : request(std::move(newRequest)), done(std::move(newDone)) {}

    void work() noexcept override;
    void finish() noexcept override { done(response); }

private:
    const Request request;
    const Done done; // does not throw
    std::optional<Response> response;
};

} // namespace connector::service
