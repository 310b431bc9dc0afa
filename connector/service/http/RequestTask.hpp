/// A request that a worker serves.
#pragma once

#include <connector/service/http/SharedTexts.hpp>
#include <connector/service/network/Task.hpp>
#include <connector/service/protocol/Request.hpp>

#include <functional>
#include <optional>
#include <utility>

namespace connector::service {

/// @return the response of the request's operation; every failure is one, too
/// @throws std::bad_alloc
Response responseTo(const Request& request);

class RequestTask : public Task {
public:
    /// Called on the network thread; without a response if there was no memory.
    using Done = std::function<void(const std::optional<Response>&)>;

    /// @param newTexts  outlives the task
    RequestTask(Request newRequest, SharedTexts& newTexts, Done newDone)
        : request(std::move(newRequest)), texts(newTexts), done(std::move(newDone)) {}

    void work() noexcept override;
    void finish() noexcept override { done(response); }

private:
    const Request request;
    SharedTexts& texts;
    const Done done; // does not throw
    std::optional<Response> response;
};

} // namespace connector::service
