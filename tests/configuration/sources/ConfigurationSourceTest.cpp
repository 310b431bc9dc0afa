/// The binary interface of sources, against which other libraries are compiled.

#include "support/Slots.hpp"

#include <connector/configuration/sources/ConfigurationSource.hpp>
#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>

namespace test {

namespace {

using connector::configuration::ConfigurationSource;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using connector::configuration::PropertyFileSource;

} // namespace

#ifdef TEST_SLOTS_ARE_KNOWN
TEST(ConfigurationSource, KeepsItsOperationsInTheirSlots) {
    EXPECT_EQ(2u, slotOf(&ConfigurationSource::get)); // after the two destructors
    EXPECT_EQ(3u, slotOf(&ConfigurationSource::set));
    EXPECT_EQ(4u, slotOf(&ConfigurationSource::has));
    EXPECT_EQ(5u, slotOf(&ConfigurationSource::setWatcher));
    EXPECT_EQ(6u, slotOf(&ConfigurationSource::keys));
}
#endif

TEST(ConfigurationSource, HasNoDataAndOnlyPureOperations) {
    EXPECT_EQ(sizeof(void*), sizeof(ConfigurationSource));
    EXPECT_TRUE(std::is_abstract_v<ConfigurationSource>);
    EXPECT_TRUE(std::has_virtual_destructor_v<ConfigurationSource>);
}

TEST(ConfigurationSource, DeclaresItsOperationsWithTheseTypes) {
    using Source = ConfigurationSource;
    using Watcher = std::function<void(const std::string&)>;
    EXPECT_TRUE(
        (std::is_same_v<OptionValue (Source::*)(const std::string&), decltype(&Source::get)>));
    EXPECT_TRUE((std::is_same_v<OptionValue (Source::*)(const std::string&, OptionValue),
                                decltype(&Source::set)>));
    EXPECT_TRUE((std::is_same_v<bool (Source::*)(const std::string&), decltype(&Source::has)>));
    EXPECT_TRUE((std::is_same_v<void (Source::*)(Watcher), decltype(&Source::setWatcher)>));
    EXPECT_TRUE((std::is_same_v<std::set<std::string> (Source::*)(), decltype(&Source::keys)>));
}

TEST(ConfigurationSource, IsTheFirstBaseOfBothSources) {
    const auto inMemory =
        std::make_shared<InMemorySource>(std::unordered_map<std::string, OptionValue>());
    EXPECT_EQ(static_cast<void*>(inMemory.get()),
              static_cast<void*>(static_cast<ConfigurationSource*>(inMemory.get())));
    const auto propertyFile = std::make_shared<PropertyFileSource>(u"/dev/null");
    EXPECT_EQ(static_cast<void*>(propertyFile.get()),
              static_cast<void*>(static_cast<ConfigurationSource*>(propertyFile.get())));
}

TEST(ConfigurationSource, ReturnsSharedPointersToItselfInBothSources) {
    const auto inMemory =
        std::make_shared<InMemorySource>(std::unordered_map<std::string, OptionValue>());
    EXPECT_EQ(inMemory, inMemory->shared_from_this());
    const auto propertyFile = std::make_shared<PropertyFileSource>(u"/dev/null");
    EXPECT_EQ(propertyFile, propertyFile->shared_from_this());
}

} // namespace test
