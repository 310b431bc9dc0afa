#include <connector/service/http/SharedResponses.hpp>

#include <new>
#include <utility>

namespace connector::service {

void SharedResponses::request(const std::string& target, Request request, RequestTask::Done done) {
    const auto making = later.find(target);
    if (making != later.end()) {
        making->second.push_back(std::move(done));
        return;
    }
    make(target, std::make_shared<const Request>(std::move(request)), {std::move(done)});
}

void SharedResponses::make(const std::string& target, const std::shared_ptr<const Request>& request,
                           Waiting waiting) {
    const auto entry = later.try_emplace(target).first;
    try {
        auto all = std::make_shared<const Waiting>(std::move(waiting));
        workers.run(std::make_unique<RequestTask>(
            *request, [this, target, request, all](const std::optional<Response>& response) {
                finish(target, request);
                for (const RequestTask::Done& done : *all)
                    done(response);
            }));
    } catch (const std::bad_alloc&) {
        later.erase(entry);
        throw;
    }
}

/// Those who asked meanwhile are served next.
void SharedResponses::finish(const std::string& target,
                             const std::shared_ptr<const Request>& request) noexcept {
    const auto entry = later.extract(target);
    if (entry.empty() || entry.mapped().empty())
        return;
    Waiting waiting = std::move(entry.mapped());
    try {
        make(target, request, waiting);
    } catch (const std::bad_alloc&) {
        for (const RequestTask::Done& done : waiting)
            done(std::nullopt);
    }
}

} // namespace connector::service
