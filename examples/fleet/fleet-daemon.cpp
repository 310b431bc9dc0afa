/// One daemon of a fleet. It reads its options from etcd, and prints the log level whenever it
/// changes.
///
///     fleet-daemon NAME PREFIXES ENDPOINTS
///
/// PREFIXES and ENDPOINTS are separated by commas. Of two prefixes that have the same option, the
/// first one supplies it. SIGINT and SIGTERM end the program.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/etcd/EtcdSource.hpp>

#include <boost/variant/get.hpp>

#include <csignal>
#include <iostream>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

using namespace connector::configuration;
using connector::etcd::EtcdSource;

namespace {

std::vector<std::string> separated(const std::string& text) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');)
        parts.push_back(part);
    return parts;
}

/// Runs on the thread of the source that has changed.
class LevelPrinter : public connector::reactive_streams::Subscriber<OptionValue> {
public:
    explicit LevelPrinter(std::string newName) : name(std::move(newName)) {}

    void
    onSubscribe(std::weak_ptr<connector::reactive_streams::Subscription> subscription) override {
        subscription.lock()->request(std::numeric_limits<std::uint64_t>::max());
    }
    void onNext(const OptionValue& value) override {
        if (const auto* const level = boost::get<std::string>(&value))
            std::cout << name + ": log.level = " + *level << std::endl;
    }
    void onComplete() override {}
    void onError(std::exception_ptr) override {}

private:
    const std::string name;
};

/// SIGINT and SIGTERM
sigset_t endingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

void run(const std::string& name, const std::vector<std::string>& prefixes,
         const std::vector<std::string>& endpoints) {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    int order = 60;
    for (const std::string& prefix : prefixes) {
        connector::etcd::Options options;
        options.endpoints = endpoints;
        options.prefix = prefix;
        const auto source = std::make_shared<EtcdSource>(options);
        configuration->addSource(prefix, "", order++, true, source).get();
    }
    const auto levels = configuration->watchOption("log.level"); // ends when it is destroyed
    levels->subscribe(std::make_shared<LevelPrinter>(name));
    std::cout << name << ": ready" << std::endl;
    const sigset_t signals = endingSignals();
    int received = 0;
    ::sigwait(&signals, &received);
}

} // namespace

int main(int count, char** arguments) try {
    if (count != 4) {
        std::cerr << "Usage: fleet-daemon NAME PREFIXES ENDPOINTS\n";
        return 2;
    }
    const sigset_t signals = endingSignals(); // blocked before there are threads, which inherit it
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    run(arguments[1], separated(arguments[2]), separated(arguments[3]));
} catch (const std::exception& failure) {
    std::cerr << failure.what() << '\n';
    return 1;
}
