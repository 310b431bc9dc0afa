/// The binary interface, against which applications are compiled.
#include "configuration/Answers.hpp"
#include "support/Slots.hpp"

#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/ConfigurationImpl.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <type_traits>
#include <unordered_map>

namespace {

using connector::Future;
using connector::configuration::Configuration;
using connector::configuration::ConfigurationImpl;
using connector::configuration::Option;
using connector::configuration::OptionValue;
using connector::reactive_streams::CachedValuePublisher;

static_assert(std::is_abstract_v<Configuration>);
static_assert(std::has_virtual_destructor_v<Configuration>);
static_assert(sizeof(Configuration) == sizeof(void*), "no data");
static_assert(std::is_base_of_v<Configuration, ConfigurationImpl>);
static_assert(std::is_base_of_v<std::enable_shared_from_this<Configuration>, ConfigurationImpl>);
static_assert(std::is_default_constructible_v<ConfigurationImpl>);
static_assert(!std::is_copy_constructible_v<ConfigurationImpl>);
static_assert(!std::is_move_constructible_v<ConfigurationImpl>);

using Values = std::unordered_map<std::string, OptionValue>;
using Text = const std::string&;
using Stream = std::shared_ptr<CachedValuePublisher<OptionValue, std::function<void()>>>;

// Each of these compiles only if the operation has exactly this type.
Future<OptionValue> (Configuration::*const get)(Text) = &Configuration::get;
Future<Option> (Configuration::*const getOption)(Text) = &Configuration::getOption;
Future<OptionValue> (Configuration::*const set)(Text, OptionValue) = &Configuration::set;
Future<OptionValue> (Configuration::*const setAt)(Text, OptionValue, Text) = &Configuration::set;
Future<bool> (Configuration::*const has)(Text) = &Configuration::has;
Future<std::set<std::string>> (Configuration::*const keys)() = &Configuration::keys;
Stream (Configuration::*const watchOption)(Text) = &Configuration::watchOption;
Future<bool> (Configuration::*const addPropertyFileSource)(
    Text, Text, int, bool, const std::u16string&) = &Configuration::addPropertyFileSource;
Future<bool> (Configuration::*const addInMemorySource)(Text, Text, int, bool, Values&&) =
    &Configuration::addInMemorySource;
Future<bool> (Configuration::*const addEnvironmentSource)(Text, Text, int) =
    &Configuration::addEnvironmentSource;
Future<bool> (Configuration::*const removeSource)(Text) = &Configuration::removeSource;
std::shared_ptr<Configuration> (Configuration::*const getPtr)() = &Configuration::getPtr;

#ifdef TEST_SLOTS_ARE_KNOWN
TEST(Configuration, KeepsItsOperationsInTheirSlots) {
    using test::slotOf;
    EXPECT_EQ(2u, slotOf(get)); // after the two destructors
    EXPECT_EQ(3u, slotOf(getOption));
    EXPECT_EQ(4u, slotOf(set));
    EXPECT_EQ(5u, slotOf(setAt));
    EXPECT_EQ(6u, slotOf(has));
    EXPECT_EQ(7u, slotOf(keys));
    EXPECT_EQ(8u, slotOf(watchOption));
    EXPECT_EQ(9u, slotOf(addPropertyFileSource));
    EXPECT_EQ(10u, slotOf(addInMemorySource));
    EXPECT_EQ(11u, slotOf(addEnvironmentSource));
    EXPECT_EQ(12u, slotOf(removeSource));
    EXPECT_EQ(13u, slotOf(getPtr));
}
#endif

TEST(ConfigurationImpl, HasConfigurationAsItsFirstBase) {
    const auto configuration = test::makeConfiguration();
    EXPECT_EQ(static_cast<void*>(configuration.get()),
              static_cast<void*>(static_cast<Configuration*>(configuration.get())));
}

TEST(ConfigurationImpl, ReturnsAPointerToItself) {
    const auto configuration = test::makeConfiguration();
    const std::shared_ptr<Configuration> pointer = configuration->getPtr();
    EXPECT_EQ(configuration, pointer);
    EXPECT_EQ(2, configuration.use_count());
}

TEST(ConfigurationImpl, OnTheStackThrowsFromGetPtr) {
    ConfigurationImpl configuration;
    EXPECT_THROW(configuration.getPtr(), std::bad_weak_ptr);
}

TEST(ConfigurationImpl, OnTheStackCanReadAndWrite) {
    ConfigurationImpl configuration;
    configuration.set("key", 7).get();
    EXPECT_EQ(7, test::intOf(configuration, "key"));
}

TEST(ConfigurationImpl, IsUsableThroughItsInterface) {
    const std::shared_ptr<Configuration> configuration = std::make_shared<ConfigurationImpl>();
    ((*configuration).*setAt)("key", 7, "default").get();
    EXPECT_EQ(7, boost::get<int>(((*configuration).*get)("key").get()));
    EXPECT_EQ("default", ((*configuration).*getOption)("key").get().source);
}

} // namespace
