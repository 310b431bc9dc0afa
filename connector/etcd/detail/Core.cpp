#include <connector/etcd/detail/Core.hpp>

#include <connector/etcd/detail/BlockedSignals.hpp>
#include <connector/etcd/detail/Transaction.hpp>

#include <pthread.h>

#include <optional>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

namespace {

/// How long stop waits for an application's function.
constexpr std::chrono::milliseconds grace{500};

std::optional<CacheFile> cacheFileOf(const Options& options) {
    if (options.cacheFile.empty())
        return std::nullopt;
    return CacheFile(options.cacheFile, options.prefix);
}

/// What a source begins with.
struct Beginning {
    Cached cached;
    bool isThere = false;
    std::string failure;
};

Beginning beginningOf(const Options& options) {
    Beginning beginning;
    const std::optional<CacheFile> file = cacheFileOf(options);
    if (!file || options.startup.kind() == Startup::Kind::Empty)
        return beginning;
    try {
        if (auto cached = file->read()) {
            beginning.cached = std::move(*cached);
            beginning.isThere = true;
        }
    } catch (const std::runtime_error& error) {
        beginning.failure = error.what();
    }
    return beginning;
}

} // namespace

struct Core::Begun {
    Beginning beginning;
};

Core::Core(Settings newSettings) : Core(newSettings, {beginningOf(newSettings.options)}) {
}

Core::Core(Settings newSettings, Begun begun)
    : settings(std::move(newSettings)), isCached(begun.beginning.isThere),
      cachedTable(std::move(begun.beginning.cached.table)),
      teller(cacheFileOf(settings.options), settings.options.timing.cacheDelay,
             begun.beginning.cached.known),
      network(settings, begun.beginning.cached.known, teller.mailbox, teller.board) {
    if (!begun.beginning.failure.empty())
        teller.board.failed(begun.beginning.failure);
}

Core::~Core() = default;

sources::Table Core::takeCachedTable() {
    return std::exchange(cachedTable, {});
}

void Core::start(std::shared_ptr<Publication> publication,
                 std::shared_ptr<const sources::Table> table) {
    teller.begin(std::move(publication), std::move(table));
    const BlockedSignals blocked;
    std::promise<void> ended; // does not share ownership of this object, unlike the thread
    tellingEnded = ended.get_future();
    tellingThread = std::thread([self = shared_from_this(), ended = std::move(ended)]() mutable {
        ::pthread_setname_np(::pthread_self(), "etcd-telling");
        self->teller.run();
        ended.set_value();
    });
    try {
        networkThread = std::thread([this] {
            ::pthread_setname_np(::pthread_self(), "etcd-network");
            network.run();
        });
    } catch (...) {
        stop();
        throw;
    }
}

void Core::stop() {
    const std::lock_guard<std::mutex> lock(stopping);
    if (std::exchange(isStopped, true))
        return;
    {
        const std::lock_guard<std::mutex> closing(submitting);
        isClosed = true;
    }
    network.stop();
    if (networkThread.joinable())
        networkThread.join();
    teller.board.stop();
    teller.mailbox.close();
    leaveTellingThread();
}

/// Joins it, unless it is this one or runs a function of the application's that does not return.
void Core::leaveTellingThread() {
    if (!tellingThread.joinable())
        return;
    const bool isThis = tellingThread.get_id() == std::this_thread::get_id();
    if (!isThis && tellingEnded.wait_for(grace) == std::future_status::ready) {
        tellingThread.join();
        return;
    }
    teller.silence();
    tellingThread.detach();
}

Future<std::int64_t> Core::apply(const std::vector<Change>& changes) {
    auto write = std::make_unique<Write>();
    try {
        write->request = transactionOf(changes, settings.options.prefix);
    } catch (const std::invalid_argument& error) {
        return makeFailedFuture<std::int64_t>(error);
    }
    write->deadline = std::chrono::steady_clock::now() + settings.options.writeTimeout;
    Future<std::int64_t> future = write->promise->getFuture();
    const std::lock_guard<std::mutex> lock(submitting);
    if (isClosed)
        return makeFailedFuture<std::int64_t>(
            std::runtime_error("Not written: the source was stopped"));
    network.submit(std::move(write));
    return future;
}

} // namespace connector::etcd::detail
