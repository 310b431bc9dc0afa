/// Ways to see whether an operation takes a configuration's mutex.
#pragma once

#include "configuration/ScriptedSource.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <chrono>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <string>
#include <thread>

namespace test {

/// Longer than anything that is not stuck takes, on a loaded machine, too.
inline constexpr std::chrono::seconds patience{20};

/// Holds a configuration's mutex, on a thread of its own, from its construction to release(): inside
/// the `has` of a source "holder", which nobody else asks, because it has a group of its own.
class MutexHolder {
public:
    explicit MutexHolder(connector::configuration::ConfigurationImpl& newConfiguration)
        : configuration(newConfiguration),
          source(std::make_shared<ScriptedSource>(journal, "holder")) {
        source->onHas = [this](const std::string&) {
            entered.set_value();
            released.get_future().wait();
        };
        configuration.addSource("holder", "holder", std::numeric_limits<int>::min(), true, source)
            .get();
        thread = std::thread([this] { configuration.has("holder.key"); });
        entered.get_future().wait();
    }

    ~MutexHolder() { release(); }
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

    void release() {
        if (!thread.joinable())
            return;
        released.set_value();
        thread.join();
        source->onHas = nullptr;
        configuration.removeSource("holder");
    }

private:
    connector::configuration::ConfigurationImpl& configuration;
    Journal journal;
    const std::shared_ptr<ScriptedSource> source;
    std::promise<void> entered;
    std::promise<void> released;
    std::thread thread;
};

/// @return whether the operation is over while another thread holds the mutex. An operation that
///         waits for the mutex is given `limit`, and ends afterwards.
inline bool endsWithoutTheMutex(connector::configuration::ConfigurationImpl& configuration,
                                const std::function<void()>& operation,
                                std::chrono::milliseconds limit = patience) {
    MutexHolder holder(configuration);
    std::future<void> over = std::async(std::launch::async, operation);
    const bool inTime = over.wait_for(limit) == std::future_status::ready;
    holder.release();
    over.get();
    return inTime;
}

/// @return whether another thread gets into the configuration
inline bool isFree(connector::configuration::Configuration& configuration) {
    std::future<void> over =
        std::async(std::launch::async, [&configuration] { configuration.has("some key"); });
    return over.wait_for(patience) == std::future_status::ready;
}

} // namespace test
