/// Waits for what a source reports.
#pragma once

#include <connector/etcd/EtcdSource.hpp>

#include <boost/variant/get.hpp>

#include <chrono>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace test {

using connector::etcd::EtcdSource;
using connector::etcd::State;
using connector::etcd::Status;

/// Records every status that a source reports. The source may outlive this object.
class Observer {
public:
    explicit Observer(EtcdSource& source) {
        source.onStatus([log = log](const Status& status) {
            const std::lock_guard<std::mutex> lock(log->mutex);
            log->all.push_back(status);
            log->changed.notify_all();
        });
    }

    /// @return whether a status that fits was reported within the time, among those that no former
    ///         call has seen
    template <typename Condition>
    bool waitUntil(Condition fits, std::chrono::milliseconds limit = std::chrono::minutes(1)) {
        std::unique_lock<std::mutex> lock(log->mutex);
        return log->changed.wait_for(lock, limit, [&] {
            while (next < log->all.size()) {
                if (fits(log->all[next++]))
                    return true;
            }
            return false;
        });
    }
    bool waitFor(State state, std::chrono::milliseconds limit = std::chrono::minutes(1)) {
        return waitUntil([state](const Status& status) { return status.state == state; }, limit);
    }

private:
    struct Log {
        std::mutex mutex;
        std::condition_variable changed;
        std::vector<Status> all;
    };

    const std::shared_ptr<Log> log = std::make_shared<Log>();
    std::size_t next = 0;
};

/// @return the text of an option; "(none)" if there is none
inline std::string textIn(const connector::sources::Table& table, const std::string& key) {
    const auto entry = table.find(key);
    if (entry == table.end())
        return "(none)";
    const auto* const text = boost::get<std::string>(&entry->second);
    return text != nullptr ? *text : "(no text)";
}
inline std::string textOf(const EtcdSource& source, const std::string& key) {
    return textIn(*source.table(), key);
}

/// @return the options of a source whose values are all texts
inline std::map<std::string, std::string> textsOf(const EtcdSource& source) {
    std::map<std::string, std::string> texts;
    const auto table = source.table();
    for (const auto& [key, value] : *table)
        texts[key] = boost::get<std::string>(value);
    return texts;
}

} // namespace test
