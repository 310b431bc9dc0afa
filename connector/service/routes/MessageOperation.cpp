/// Messages over HTTP.
#include <connector/service/routes/Services.hpp>

#include <connector/service/protocol/Router.hpp>

#include <utility>

namespace connector::service {

namespace {

Status statusOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::Done:
        return Status::ok;
    case Outcome::InvalidMessage:
        return Status::bad_request;
    case Outcome::Refused:
        return Status::forbidden;
    case Outcome::TooLarge:
        return Status::payload_too_large;
    case Outcome::Failed:
        return Status::unprocessable_entity;
    case Outcome::Stopped:
    case Outcome::OutOfMemory:
        return Status::service_unavailable;
    }
    return Status::internal_server_error; // unreachable
}

} // namespace

void addMessageOperation(Router& router, const Services& services) {
    Operation operation;
    operation.method = "POST";
    operation.path = "/messages";
    operation.summary = "Executes a message and returns its reply";
    operation.schema = "Message";
    operation.bodySchema = "Message";
    operation.handler = [services](const Request& request) {
        const Reply reply = services.messages.reply(request.body);
        services.metrics.lookups += reply.hasOption ? 1 : 0;
        if (reply.outcome == Outcome::Done)
            return jsonResponse(reply.text);
        return problemResponse(statusOf(reply.outcome), reply.text, reply.failure, reply.key);
    };
    router.add(std::move(operation));
}

} // namespace connector::service
