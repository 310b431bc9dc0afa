#include <connector/etcd/EtcdSource.hpp>

#include <connector/etcd/detail/BlockedSignals.hpp>
#include <connector/etcd/detail/Core.hpp>

#include <algorithm>
#include <iterator>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace connector::etcd {

using configuration::OptionValue;

namespace {

/// @return all keys of a change, in ascending order
std::vector<std::string> keysOf(sources::TableChange change) {
    std::vector<std::string> keys = std::move(change.added);
    for (auto* const more : {&change.changed, &change.removed})
        std::move(more->begin(), more->end(), std::back_inserter(keys));
    std::sort(keys.begin(), keys.end());
    return keys;
}

/// The first completion queue starts the threads of gRPC.
std::shared_ptr<detail::Core> makeCore(Options options) {
    const detail::BlockedSignals blocked;
    return std::make_shared<detail::Core>(detail::checked(std::move(options)));
}

} // namespace

/// Replaces the table of the source as long as there is one. The difference is computed while the
/// mutex is held; nothing of the application's is called.
class EtcdSource::Publication : public detail::Publication {
public:
    explicit Publication(EtcdSource& newSource) : source(&newSource) {}

    detail::Replacement replace(sources::Table table) override {
        const std::lock_guard<std::mutex> lock(mutex);
        if (source == nullptr)
            return {{}, std::make_shared<const sources::Table>(std::move(table)), nullptr};
        Exchange exchanged = source->exchangeTable(std::move(table));
        return {keysOf(std::move(exchanged.change)), source->table(),
                std::move(exchanged.previous)};
    }

    std::shared_ptr<const sources::Table>
    publish(std::shared_ptr<const sources::Table> table) override {
        const std::lock_guard<std::mutex> lock(mutex);
        return source == nullptr ? nullptr : source->exchange(std::move(table));
    }

    void end() {
        const std::lock_guard<std::mutex> lock(mutex);
        source = nullptr;
    }

private:
    std::mutex mutex;
    EtcdSource* source;
};

EtcdSource::EtcdSource(Options options)
    : core(makeCore(std::move(options))), publication(std::make_shared<Publication>(*this)) {
    exchangeTable(core->takeCachedTable());
    core->start(publication, table());
    const Startup startup = core->getSettings().options.startup;
    if (startup.kind() != Startup::Kind::Wait ||
        core->getTeller().board.waitForCurrent(startup.timeout()) || core->hasCache())
        return;
    const std::string failure = status().failure;
    core->stop();
    publication->end();
    throw std::runtime_error("etcd does not answer: " +
                             (failure.empty() ? "no answer in time" : failure));
}

EtcdSource::~EtcdSource() {
    core->stop();
    publication->end();
}

Future<std::int64_t> EtcdSource::put(const std::string& key, const OptionValue& value,
                                     std::optional<std::int64_t> expectedRevision) {
    return core->apply({{key, value, expectedRevision}});
}

Future<std::int64_t> EtcdSource::put(const std::string& key, const char* text,
                                     std::optional<std::int64_t> expectedRevision) {
    return put(key, OptionValue(std::string(text)), expectedRevision);
}

Future<std::int64_t> EtcdSource::erase(const std::string& key,
                                       std::optional<std::int64_t> expectedRevision) {
    return core->apply({{key, std::nullopt, expectedRevision}});
}

Future<std::int64_t> EtcdSource::apply(std::vector<Change> changes) {
    return core->apply(changes);
}

Status EtcdSource::status() const {
    return core->getTeller().board.status();
}

void EtcdSource::onStatus(std::function<void(const Status&)> handler) {
    core->getTeller().statusHandler.set(std::move(handler));
    core->getTeller().reportStatusAgain();
}

void EtcdSource::onError(std::function<void(std::exception_ptr)> handler) {
    core->getTeller().errorHandler.set(std::move(handler));
}

bool EtcdSource::waitFor(std::int64_t revision, std::chrono::milliseconds timeout) const {
    return core->getTeller().board.waitForRevision(revision, timeout);
}

void EtcdSource::stop() {
    core->stop();
}

void EtcdSource::setWatcher(Watcher newWatcher) {
    core->getTeller().watcher.set(std::move(newWatcher));
}

} // namespace connector::etcd
