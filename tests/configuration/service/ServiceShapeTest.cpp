/// The binary interface of the provider, against which frameworks and applications are compiled.
#include "configuration/service/RecordingProvider.hpp"
#include "support/Slots.hpp"

#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>

#include <gtest/gtest.h>

#include <tuple>
#include <type_traits>

namespace {

using namespace connector::configuration;
using connector::Address;
using connector::Context;
using connector::ServiceProvider;
using connector::ServiceProviderAPI;
using connector::common::Lifecycle;
using test::MessagePtr;
using test::Reply;

static_assert(std::is_base_of_v<Lifecycle, ServiceProvider>);
static_assert(std::is_base_of_v<ServiceProvider, ServiceProviderAPI<ConfigurationServiceProvider>>);
static_assert(std::is_base_of_v<std::enable_shared_from_this<ConfigurationServiceProvider>,
                                ServiceProviderAPI<ConfigurationServiceProvider>>);
static_assert(std::is_base_of_v<ServiceProviderAPI<ConfigurationServiceProvider>,
                                ConfigurationServiceProvider>);
static_assert(std::is_base_of_v<ConfigurationServiceProvider, ConfigurationServiceProviderImpl>);
static_assert(std::has_virtual_destructor_v<Lifecycle>);
static_assert(std::is_abstract_v<ServiceProvider>);
static_assert(std::is_abstract_v<ConfigurationServiceProvider>);
static_assert(!std::is_copy_constructible_v<ConfigurationServiceProviderImpl>);
static_assert(
    std::is_constructible_v<ConfigurationServiceProviderImpl, std::shared_ptr<Configuration>>);

template <typename Message>
using Operation = Reply (ConfigurationServiceProvider::*)(std::unique_ptr<Message>&&, Address&&,
                                                          std::shared_ptr<Context>&&);

// Each of these compiles only if the operation has exactly this type.
Reply (ServiceProvider::*const dispatch)(MessagePtr&&, Address&&,
                                         std::shared_ptr<Context>&&) = &ServiceProvider::dispatch;
const Operation<ConfigurationGet> handleGet = &ConfigurationServiceProvider::handle;
const Operation<ConfigurationSet> handleSet = &ConfigurationServiceProvider::handle;
const Operation<ConfigurationKeys> handleKeys = &ConfigurationServiceProvider::handle;
const Operation<AddPropertyFileSource> handleAdd = &ConfigurationServiceProvider::handle;

/// Exposes the protected hooks.
class ExposedHooks : public ConfigurationServiceProviderImpl {
public:
    using Hook = void (ExposedHooks::*)();
    static Hook startHook() { return &ExposedHooks::onStart; }
    static Hook stopHook() { return &ExposedHooks::onStop; }
};

#ifdef TEST_SLOTS_ARE_KNOWN
TEST(ConfigurationServiceProvider, KeepsItsOperationsInTheirSlots) {
    EXPECT_EQ(2u, test::slotOf(ExposedHooks::startHook())); // after the two destructors
    EXPECT_EQ(3u, test::slotOf(ExposedHooks::stopHook()));
    EXPECT_EQ(4u, test::slotOf(dispatch));
    EXPECT_EQ(5u, test::slotOf(handleGet));
    EXPECT_EQ(6u, test::slotOf(handleSet));
    EXPECT_EQ(7u, test::slotOf(handleKeys));
    EXPECT_EQ(8u, test::slotOf(handleAdd));
}
#endif

TEST(ConfigurationServiceProvider, IsCalledThroughPointersToItsOperations) {
    const auto provider = std::make_shared<test::RecordingProvider>();
    ConfigurationServiceProvider& base = *provider;
    std::ignore =
        ((base).*handleGet)(std::make_unique<ConfigurationGet>("key"), Address(), nullptr);
    std::ignore =
        ((base).*handleSet)(std::make_unique<ConfigurationSet>("key", 7, ""), Address(), nullptr);
    std::ignore = ((base).*handleKeys)(std::make_unique<ConfigurationKeys>(), Address(), nullptr);
    std::ignore = ((base).*handleAdd)(
        std::make_unique<AddPropertyFileSource>("s", "", 5, true, u""), Address(), nullptr);
    std::ignore = ((base).*dispatch)(std::make_unique<ConfigurationGet>("key"), Address(), nullptr);
    EXPECT_EQ((std::vector<std::string>{"Get", "Set", "Keys", "AddPropertyFileSource"}),
              provider->calls)
        << "dispatch fails, because the service is not running";
}

TEST(ConfigurationServiceProvider, HasLifecycleAsItsFirstBase) {
    const auto provider = std::make_shared<test::RecordingProvider>();
    EXPECT_EQ(static_cast<void*>(provider.get()),
              static_cast<void*>(static_cast<Lifecycle*>(provider.get())));
}

} // namespace
