/// Holds a configuration's mutex on another thread.
#pragma once

#include "configuration/ScriptedSource.hpp"
#include "support/ObservedThread.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>

#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <string>
#include <thread>

namespace test {

/// Holds the mutex from construction to release(). Its thread waits inside `has` of a source
/// named "holder", whose group no other lookup matches.
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
        thread = std::thread([this] { configuration.has("holder.key").get(); });
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
        configuration.removeSource("holder").get();
    }

private:
    connector::configuration::ConfigurationImpl& configuration;
    Journal journal;
    const std::shared_ptr<ScriptedSource> source;
    std::promise<void> entered;
    std::promise<void> released;
    std::thread thread;
};

/// Runs an operation while another thread holds the mutex.
/// @return whether the operation waits for the mutex
inline bool waitsForMutex(connector::configuration::ConfigurationImpl& configuration,
                          std::function<void()> operation) {
    MutexHolder holder(configuration);
    ObservedThread thread(std::move(operation));
    const bool waits = thread.blocksOn(configuration);
    holder.release();
    thread.join();
    return waits;
}

} // namespace test
