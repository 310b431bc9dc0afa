/// A second client of the engine, for what happens outside of the source.
#pragma once

#include <etcdserverpb/rpc.grpc.pb.h>
#include <grpcpp/grpcpp.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// Calls wait for the engine, at most half a minute, except where they say otherwise. Keys and
/// values are those of the engine, byte for byte.
class Client {
public:
    using Pairs = std::vector<std::pair<std::string, std::optional<std::string>>>;

    explicit Client(const std::string& endpoint);

    /// @return the revision
    /// @throws std::runtime_error with the message of the engine
    std::int64_t put(const std::string& key, const std::string& value);
    std::int64_t erase(const std::string& key);

    /// Writes, or erases, in one transaction.
    std::int64_t write(const Pairs& changes);

    /// @return nothing when it failed within the time; it may have happened
    std::optional<std::int64_t> tryToWrite(const Pairs& changes, std::chrono::milliseconds time);

    /// All keys of a prefix at one revision.
    struct Content {
        std::int64_t revision = 0;
        std::map<std::string, std::string> values; ///< without the prefix
    };
    Content list(const std::string& prefix);

private:
    void connect();

    const std::string target;
    std::unique_ptr<etcdserverpb::KV::Stub> kv;
};

} // namespace test
