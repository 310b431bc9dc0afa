#include <connector/service/http/SharedResponses.hpp>

#include <new>
#include <string>
#include <utility>

namespace connector::service {

namespace {

/// @return a text that is the same for the same operation, key and parameters only, however the
///         target of the request encodes them
std::string nameOf(const Request& request) {
    std::string name;
    const auto add = [&name](const std::string& part) {
        name += std::to_string(part.size());
        name += ':';
        name += part;
    };
    add(request.operation->path);
    add(request.key);
    for (const auto& [parameter, value] : request.parameters) {
        add(parameter);
        add(value);
    }
    return name;
}

} // namespace

void SharedResponses::request(Request request, RequestTask::Done done) {
    const std::string name = nameOf(request);
    const auto making = later.find(name);
    if (making != later.end()) {
        making->second.push_back(std::move(done));
        return;
    }
    make(name, std::make_shared<const Request>(std::move(request)), {std::move(done)});
}

void SharedResponses::make(const std::string& name, const std::shared_ptr<const Request>& request,
                           Waiting waiting) {
    const auto entry = later.try_emplace(name).first;
    try {
        auto all = std::make_shared<const Waiting>(std::move(waiting));
        workers.run(std::make_unique<RequestTask>(
            *request, texts, [this, name, request, all](const std::optional<Response>& response) {
                finish(name, request);
                for (const RequestTask::Done& done : *all)
                    done(response);
            }));
    } catch (const std::bad_alloc&) {
        later.erase(entry);
        throw;
    }
}

/// Those who asked meanwhile are served next.
void SharedResponses::finish(const std::string& name,
                             const std::shared_ptr<const Request>& request) noexcept {
    const auto entry = later.extract(name);
    if (entry.empty() || entry.mapped().empty())
        return;
    Waiting waiting = std::move(entry.mapped());
    try {
        make(name, request, waiting);
    } catch (const std::bad_alloc&) {
        for (const RequestTask::Done& done : waiting)
            done(std::nullopt);
    }
}

} // namespace connector::service
