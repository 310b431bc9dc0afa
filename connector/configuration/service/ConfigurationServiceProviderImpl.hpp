/// The service in front of a Configuration.
#pragma once

#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

#include <memory>

namespace connector::configuration {

/// Every reply is what the configuration answers. Has no state and
/// no lock of its own, so it may be called from any thread. Owned by a std::shared_ptr; started and
/// stopped by the application.
class CONNECTOR_EXPORT ConfigurationServiceProviderImpl : public ConfigurationServiceProvider {
public:
    /// @param newConfiguration  kept alive by the service
    /// @throws std::invalid_argument "A configuration service needs a configuration."
    explicit ConfigurationServiceProviderImpl(std::shared_ptr<Configuration> newConfiguration);
    ~ConfigurationServiceProviderImpl() override;

    /// Calls has, and then getOption if there is one. If the option is removed in between, the
    /// failure of getOption is thrown.
    /// @return the option; or a response without one, when there is no such option
    Reply handle(std::unique_ptr<ConfigurationGet>&& request, Address&& address,
                 std::shared_ptr<Context>&& context) override;

    /// @return what was written: the key of the request, the source that the request names (so
    ///         none, if it names none, whichever source took the value) and the value that set
    ///         answered
    Reply handle(std::unique_ptr<ConfigurationSet>&& request, Address&& address,
                 std::shared_ptr<Context>&& context) override;

    Reply handle(std::unique_ptr<ConfigurationKeys>&& request, Address&& address,
                 std::shared_ptr<Context>&& context) override;

    /// @return a bare Message, whatever the configuration answered: the requester learns only that
    ///         nothing was thrown
    Reply handle(std::unique_ptr<AddPropertyFileSource>&& request, Address&& address,
                 std::shared_ptr<Context>&& context) override;

protected:
    void onStart() override;
    void onStop() override;

private:
    const std::shared_ptr<Configuration> configuration;
};

} // namespace connector::configuration
