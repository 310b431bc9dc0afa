/// Watches an option: prints its current value and every later one.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/reactive_streams/Subscriber.hpp>

#include <iostream>

using namespace connector::configuration;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

/// Requests one value at a time: the next one after the last one is handled.
class PortWatcher : public Subscriber<OptionValue> {
public:
    void onSubscribe(std::weak_ptr<Subscription> newSubscription) override {
        subscription = newSubscription;
        requestOne();
    }
    void onNext(const OptionValue& value) override {
        std::cout << "net.port is now " << boost::get<std::string>(value) << '\n';
        requestOne();
    }
    void onComplete() override { std::cout << "completed\n"; }
    void onError(std::exception_ptr) override {}

private:
    void requestOne() {
        if (const auto alive = subscription.lock())
            alive->request(1);
    }

    std::weak_ptr<Subscription> subscription;
};

int main() {
    auto configuration = std::make_shared<ConfigurationImpl>();
    configuration
        ->addPropertyFileSource("site", "", 100, true, u"examples/properties/site.properties")
        .get();
    configuration->watchOption("net.port")->subscribe(std::make_shared<PortWatcher>());

    // In "override", which hides "site".
    configuration->set("net.port", std::string("8080")).get();
    // Hidden by "override": delivers 8080 again.
    configuration->set("net.port", std::string("1234"), "default").get();
    // Delivers the value of "site" again.
    configuration->removeSource("override").get();
    // Completes the stream.
    configuration.reset();
}
