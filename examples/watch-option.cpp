/// Follows an option: the value that it has now, and every one that it gets.
#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/reactive_streams/Subscriber.hpp>

#include <iostream>

using namespace connector::configuration;
using connector::reactive_streams::Subscriber;
using connector::reactive_streams::Subscription;

/// Takes one value at a time: it asks for the next when it is done with the last.
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
    void onComplete() override { std::cout << "no more news\n"; }
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
    configuration->addPropertyFileSource("site", "", 100, true,
                                         u"examples/properties/site.properties");
    configuration->watchOption("net.port")->subscribe(std::make_shared<PortWatcher>());

    configuration->set("net.port", std::string("8080")); // to "override", which hides "site"
    configuration->set("net.port", std::string("1234"), "default"); // hidden: 8080 comes again
    configuration->removeSource("override");                        // back to what "site" says
    configuration.reset();                                          // its streams end with it
}
