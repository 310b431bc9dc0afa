#include <connector/service/metrics/Metrics.hpp>

#include <algorithm>
#include <charconv>
#include <utility>

namespace connector::service {

namespace {

std::string numberText(double number) {
    std::array<char, 32> text;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return std::string(text.data(), end);
}

/// @param help  a sentence for people
std::string header(const std::string& name, const char* type, const char* help) {
    return "# HELP " + name + ' ' + help + "\n# TYPE " + name + ' ' + type + '\n';
}

template <typename Number>
void addSingle(std::string& text, const std::string& name, const char* type, const char* help,
               Number value) {
    text += header(name, type, help) + name + ' ' + std::to_string(value) + '\n';
}

} // namespace

/// The last one stands for all others.
const std::array<unsigned, Metrics::statusCount> Metrics::knownStatuses{
    200, 400, 401, 403, 404, 405, 406, 408, 413, 415, 422, 431, 500, 503, 0};

const std::array<double, Metrics::bucketCount> Metrics::bounds{
    0.0001, 0.00025, 0.0005, 0.001, 0.0025, 0.005, 0.01, 0.025, 0.05, 0.1, 0.25, 0.5, 1, 5};

void Metrics::setRoutes(std::vector<std::string> newRoutes) {
    newRoutes.emplace_back("other");
    names = std::move(newRoutes);
    routes.resize(names.size());
}

void Metrics::countRequest(std::size_t route, Status status,
                           std::chrono::nanoseconds duration) noexcept {
    Route& counters = routes[std::min(route, routes.size() - 1)];
    const auto known =
        std::find(knownStatuses.begin(), knownStatuses.end() - 1, static_cast<unsigned>(status));
    ++counters.statuses[static_cast<std::size_t>(known - knownStatuses.begin())];
    const double seconds = std::chrono::duration<double>(duration).count();
    const auto bound = std::lower_bound(bounds.begin(), bounds.end(), seconds);
    ++counters.buckets[static_cast<std::size_t>(bound - bounds.begin())];
    counters.nanoseconds += static_cast<std::uint64_t>(duration.count());
}

std::string Metrics::text(std::size_t options, std::size_t sources) const {
    std::string text;
    addRequests(text);
    addDurations(text);
    addSingle(text, "connector_http_connections", "gauge", "Open connections.", connections.load());
    addSingle(text, "connector_event_streams", "gauge", "Clients that watch options.",
              eventStreams.load());
    addSingle(text, "connector_lookups_total", "counter", "Options given out in responses.",
              lookups.load());
    addSingle(text, "connector_changes_told_total", "counter", "Values handed to event streams.",
              changesTold.load());
    addSingle(text, "connector_options", "gauge", "Options of the configuration.", options);
    addSingle(text, "connector_sources", "gauge", "Sources of the configuration.", sources);
    const std::string name = "connector_reloads_total";
    text += header(name, "counter", "Files that were read again.");
    text += name + "{result=\"success\"} " + std::to_string(reloads) + '\n';
    text += name + "{result=\"failure\"} " + std::to_string(failedReloads) + '\n';
    return text;
}

void Metrics::addRequests(std::string& text) const {
    const std::string name = "connector_http_requests_total";
    text += header(name, "counter", "Requests that were answered.");
    for (std::size_t route = 0; route < routes.size(); ++route) {
        for (std::size_t i = 0; i < statusCount; ++i) {
            const std::uint64_t count = routes[route].statuses[i];
            if (count == 0)
                continue;
            const std::string status =
                knownStatuses[i] == 0 ? "other" : std::to_string(knownStatuses[i]);
            text += name + "{route=\"" + names[route] + "\",status=\"" + status + "\"} " +
                    std::to_string(count) + '\n';
        }
    }
}

void Metrics::addDurations(std::string& text) const {
    const std::string name = "connector_http_request_duration_seconds";
    text += header(name, "histogram", "From the first byte of a request to its response.");
    for (std::size_t route = 0; route < routes.size(); ++route) {
        const std::string label = "{route=\"" + names[route] + '"';
        std::uint64_t count = 0;
        for (std::size_t i = 0; i <= bucketCount; ++i) {
            count += routes[route].buckets[i];
            text += name + "_bucket" + label + ",le=\"" +
                    (i < bucketCount ? numberText(bounds[i]) : "+Inf") + "\"} " +
                    std::to_string(count) + '\n';
        }
        const double seconds = static_cast<double>(routes[route].nanoseconds.load()) / 1e9;
        text += name + "_sum" + label + "} " + numberText(seconds) + '\n';
        text += name + "_count" + label + "} " + std::to_string(count) + '\n';
    }
}

} // namespace connector::service
