#include <connector/service/http/RequestTask.hpp>

#include <connector/service/messages/Reply.hpp>

#include <new>
#include <utility>

namespace connector::service {

Response responseTo(const Request& request) {
    try {
        return request.operation->handler(request);
    } catch (const HttpError& error) {
        const std::string& key = error.key.empty() ? request.key : error.key;
        return problemResponse(HttpError(error.status, error.text, key, error.lines));
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) { // of the configuration
        return problemResponse(Status::unprocessable_entity, errorJson(error), error.what(),
                               request.key);
    } catch (...) {
        return problemResponse(
            HttpError(Status::unprocessable_entity, "Unknown failure", request.key));
    }
}

void RequestTask::work() noexcept {
    try {
        Response made = responseTo(request);
        made.body = texts.shared(std::move(made.body));
        response = std::move(made);
    } catch (...) { // no memory; the connection says so
    }
}

} // namespace connector::service
