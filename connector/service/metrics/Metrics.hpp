/// What the service counts, in the text format of Prometheus.
#pragma once

#include <connector/service/protocol/HttpError.hpp>

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace connector::service {

/// No key and no value is in any label. All counters may be used from any thread.
class Metrics {
public:
    static constexpr std::size_t otherRoute = static_cast<std::size_t>(-1);

    /// Called once, before requests are counted.
    /// @param newRoutes  the paths of the service; requests for others are counted as "other"
    void setRoutes(std::vector<std::string> newRoutes);

    /// @param route  the position in the list of routes; otherRoute for "other"
    void countRequest(std::size_t route, Status status, std::chrono::nanoseconds duration) noexcept;

    /// @param options  how many options there are
    /// @param sources  how many sources there are
    std::string text(std::size_t options, std::size_t sources) const;

    std::atomic<std::int64_t> connections{0};
    std::atomic<std::int64_t> eventStreams{0};
    std::atomic<std::uint64_t> lookups{0};     ///< options given out in responses
    std::atomic<std::uint64_t> changesTold{0}; ///< values handed to event streams
    std::atomic<std::uint64_t> reloads{0};
    std::atomic<std::uint64_t> failedReloads{0};

private:
    static constexpr std::size_t bucketCount = 14;
    static constexpr std::size_t statusCount = 15;

    struct Route {
        std::array<std::atomic<std::uint64_t>, statusCount> statuses{};
        std::array<std::atomic<std::uint64_t>, bucketCount + 1> buckets{}; // not cumulative
        std::atomic<std::uint64_t> nanoseconds{0};
    };

    static const std::array<unsigned, statusCount> knownStatuses;
    static const std::array<double, bucketCount> bounds; // in seconds

    void addRequests(std::string& text) const;
    void addDurations(std::string& text) const;

    std::vector<std::string> names;
    std::deque<Route> routes; // as many as names
};

} // namespace connector::service
