/// A follower of one option.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidOption.hpp>
#include <connector/configuration/typed/detail/Equality.hpp>
#include <connector/configuration/typed/detail/Follower.hpp>
#include <connector/configuration/typed/detail/StreamLink.hpp>

#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace connector::configuration::detail {

/// @throws std::invalid_argument "A null configuration cannot be followed."
CONNECTOR_EXPORT Configuration& demand(const std::shared_ptr<Configuration>& configuration);

class CONNECTOR_EXPORT OptionFollower : public Follower {
public:
    ~OptionFollower() override;

    /// Makes a follower, links it to its option and starts it.
    template <typename Derived, typename... Arguments>
    static std::shared_ptr<Derived> follow(const std::shared_ptr<Configuration>& configuration,
                                           const std::string& key, Arguments&&... arguments) {
        Configuration& followed = demand(configuration);
        auto follower =
            std::make_shared<Derived>(configuration, key, std::forward<Arguments>(arguments)...);
        follower->link(followed, follower);
        follower->start();
        return follower;
    }

protected:
    OptionFollower(const std::weak_ptr<Configuration>& newConfiguration, const std::string& newKey);

    /// Called with the present option. @return whether there is something to report
    virtual bool take(Option&& option) = 0;

    /// Remembers a value that does not convert. @return whether it differs from the one before
    bool refuse(Option&& option, const std::string& expected);

    /// Forgets it. @return whether there was one
    bool accept();

    void release() noexcept override;

    std::optional<InvalidOption> problem; // of the refused value

private:
    void link(Configuration& followed, const std::weak_ptr<Follower>& self);
    bool read() final;

    const std::weak_ptr<Configuration> configuration;
    std::optional<StreamLink> stream;
    std::optional<Option> refused; // used by the running thread only, like the problem
};

} // namespace connector::configuration::detail
