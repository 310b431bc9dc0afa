/// The change events of POCO's configurations.
#include "Set.hpp"

#include <Poco/AutoPtr.h>
#include <Poco/Delegate.h>
#include <Poco/Util/MapConfiguration.h>

#include <string>
#include <vector>

namespace {

using bench::watching::Keeper;
using bench::watching::OptionValue;

/// Its events contain the value as text.
class PocoEvents {
public:
    explicit PocoEvents(int watchers) : listeners(static_cast<std::size_t>(watchers)) {
        for (Listener& listener : listeners)
            configuration->propertyChanged += Poco::delegate(&listener, &Listener::onChange);
    }

    void set(const OptionValue& value) {
        if (const int* const number = boost::get<int>(&value))
            configuration->setInt("net.port", *number);
        else
            configuration->setString("net.port", boost::get<std::string>(value));
    }

    bool allHold(const OptionValue& value) const {
        const int* const number = boost::get<int>(&value);
        const OptionValue text = number == nullptr ? value : OptionValue(std::to_string(*number));
        for (const Listener& listener : listeners) {
            if (!listener.keeper.holds(text))
                return false;
        }
        return true;
    }

private:
    struct Listener {
        void onChange(const Poco::Util::AbstractConfiguration::KeyValue& change) {
            keeper.keep(change.value());
        }
        Keeper keeper;
    };
    std::vector<Listener> listeners;
    Poco::AutoPtr<Poco::Util::MapConfiguration> configuration{new Poco::Util::MapConfiguration};
};

[[maybe_unused]] const bool registered = [] {
    bench::watching::addManyWatchers<PocoEvents>("POCO");
    return true;
}();

} // namespace
