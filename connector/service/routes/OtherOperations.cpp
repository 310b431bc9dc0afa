/// What is not about single options: watching, health and counters.
#include <connector/service/routes/Services.hpp>

#include <connector/service/protocol/Router.hpp>

#include <utility>

namespace connector::service {

namespace {

Operation getOperation(const char* path, const char* summary) {
    Operation operation;
    operation.method = "GET";
    operation.path = path;
    operation.summary = summary;
    return operation;
}

} // namespace

void addWatchOperation(Router& router) {
    Operation operation =
        getOperation("/watch", "The values of options and every change of them, as events");
    operation.parameters = {"key", "prefix"};
    operation.repeatsParameters = true;
    operation.header = "Last-Event-ID";
    operation.contentType = "text/event-stream";
    router.add(std::move(operation));
}

/// A process is alive that reads requests, also while all workers wait for the configuration. It is
/// ready if a worker comes round to the request: its sources are in memory.
void addHealthOperations(Router& router) {
    const auto add = [&router](const char* path, const char* summary, const char* answer,
                               bool isImmediate) {
        Operation operation = getOperation(path, summary);
        operation.isPublic = true;
        operation.isImmediate = isImmediate;
        operation.schema = "Health";
        operation.handler = [answer](const Request&) { return jsonResponse(answer); };
        router.add(std::move(operation));
    };
    add("/healthz", "Whether the process is alive", R"({"status":"alive"})", true);
    add("/readyz", "Whether requests are served", R"({"status":"ready"})", false);
}

void addMetricsOperation(Router& router, const Services& services) {
    Operation operation = getOperation("/metrics", "Counters in the text format of Prometheus");
    operation.contentType = "text/plain";
    operation.handler = [services](const Request&) {
        const std::size_t options = services.configuration.keys().get().size();
        const std::size_t sources = services.configuration.explain("").size();
        Response response;
        response.body =
            std::make_shared<const std::string>(services.metrics.text(options, sources));
        response.contentType = "text/plain; version=0.0.4; charset=utf-8";
        return response;
    };
    router.add(std::move(operation));
}

} // namespace connector::service
