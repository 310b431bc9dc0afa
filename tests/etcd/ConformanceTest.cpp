// EtcdSource follows the rules of every source.
#include "Fixture.hpp"

#include <connector/testing/SourceConformance.hpp>

#include <atomic>
#include <exception>
#include <mutex>

namespace {

using namespace test;
using connector::testing::SourceFactory;

/// The server of all sources of a test, which have prefixes of their own.
EtcdServer& server() {
    static EtcdServer one;
    return one;
}

/// What the watcher threw while a change was told.
class Thrown {
public:
    explicit Thrown(EtcdSource& newSource) : source(newSource) {
        source.onError([held = held](const std::exception_ptr& error) { held->set(error); });
    }
    ~Thrown() { source.onError({}); }
    Thrown(const Thrown&) = delete;
    Thrown& operator=(const Thrown&) = delete;

    void rethrow() const {
        if (const std::exception_ptr error = held->get())
            std::rethrow_exception(error);
    }

private:
    struct Held {
        void set(const std::exception_ptr& newError) {
            const std::lock_guard<std::mutex> lock(mutex);
            error = newError;
        }
        std::exception_ptr get() {
            const std::lock_guard<std::mutex> lock(mutex);
            return error;
        }
        std::mutex mutex;
        std::exception_ptr error;
    };

    EtcdSource& source;
    const std::shared_ptr<Held> held = std::make_shared<Held>();
};

/// A source that knows its own prefix.
class Tested : public EtcdSource {
public:
    explicit Tested(Options options) : EtcdSource(options), prefix(options.prefix) {}
    const std::string prefix;
};

std::shared_ptr<SourceFactory::Source> make(const SourceFactory::Table& table) {
    static std::atomic<int> number{0};
    Options options = optionsFor({server().endpoint()});
    options.prefix = "conformance/" + std::to_string(++number) + '/';
    Client client(server().endpoint());
    for (const auto& [key, value] : table)
        client.put(options.prefix + key, boost::get<std::string>(value));
    return std::make_shared<Tested>(options);
}

void change(SourceFactory::Source& source, const std::string& key,
            const std::optional<OptionValue>& value) {
    static Client client(server().endpoint());
    auto& tested = dynamic_cast<Tested&>(source);
    const Thrown thrown(tested);
    const std::string name = tested.prefix + key;
    const std::int64_t revision =
        value ? client.put(name, boost::get<std::string>(*value)) : client.erase(name);
    ASSERT_TRUE(tested.waitFor(revision, 30s)) << key;
    thrown.rethrow();
}

SourceFactory factory() {
    return {make, change, false};
}

CONNECTOR_SOURCE_CONFORMANCE(EtcdSourceConformance, factory());

} // namespace
