/// Responses that all clients share who wait for them at the same time.
#pragma once

#include <connector/service/http/RequestTask.hpp>
#include <connector/service/network/Workers.hpp>
#include <connector/service/protocol/Request.hpp>

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace connector::service {

/// A list of many options takes long to make. While a worker makes one, later requests for the same
/// wait; then one more is made for all of them. So each gets what was true after it asked, and a
/// thousand clients cost two lists. Used by the network thread only.
class SharedResponses {
public:
    /// @param newWorkers  outlives this object, as the other argument does
    SharedResponses(Workers& newWorkers, SharedTexts& newTexts)
        : workers(newWorkers), texts(newTexts) {}

    /// @param request  without a body
    void request(Request request, RequestTask::Done done);

private:
    using Waiting = std::vector<RequestTask::Done>;

    void make(const std::string& name, const std::shared_ptr<const Request>& request,
              Waiting waiting);
    void finish(const std::string& name, const std::shared_ptr<const Request>& request) noexcept;

    Workers& workers;
    SharedTexts& texts;
    std::unordered_map<std::string, Waiting>
        later; // by the names of the requests that are being served
};

} // namespace connector::service
