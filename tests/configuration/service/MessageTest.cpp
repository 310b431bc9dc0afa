/// The layout of the messages, against which other programs are compiled.
#include "configuration/service/Messages.hpp"
#include "support/Slots.hpp"

#include <connector/configuration/service/ConfigurationServiceProvider.hpp>

#include <boost/variant/get.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

namespace {

using namespace connector::configuration;
using connector::Address;
using connector::Context;
using connector::Message;
using connector::MessageAPI;
using connector::ServiceMessage;
using test::MessagePtr;
using testing::ElementsAre;
using testing::IsEmpty;

using RequestOfTheService = ServiceMessage<ConfigurationServiceProvider>;

template <typename Request>
constexpr bool isARequest =
    std::is_base_of_v<MessageAPI<Request, ConfigurationServiceProvider>, Request>&&
        std::is_base_of_v<RequestOfTheService, Request>&& std::is_base_of_v<Message, Request> &&
    !std::is_final_v<Request> && !std::is_abstract_v<Request>;

static_assert(isARequest<ConfigurationGet>);
static_assert(isARequest<ConfigurationSet>);
static_assert(isARequest<ConfigurationKeys>);
static_assert(isARequest<AddPropertyFileSource>);

template <typename Response>
constexpr bool isAReply =
    std::is_base_of_v<Message, Response> && !std::is_base_of_v<RequestOfTheService, Response> &&
    !std::is_final_v<Response>;

static_assert(isAReply<ConfigurationOptionResponse>);
static_assert(isAReply<ConfigurationKeysResponse>);

static_assert(std::is_abstract_v<RequestOfTheService>);
static_assert(std::has_virtual_destructor_v<Message>);
static_assert(std::is_default_constructible_v<Message>, "a bare message is a reply");
static_assert(sizeof(Message) == sizeof(void*), "no data");
static_assert(sizeof(RequestOfTheService) == sizeof(Message));

static_assert(std::is_default_constructible_v<Address>);
static_assert(std::is_move_constructible_v<Address> && std::is_move_assignable_v<Address>);
static_assert(std::has_virtual_destructor_v<Context>);

// Compiles only if the operation has exactly this type.
connector::Future<MessagePtr> (RequestOfTheService::*const deliver)(
    std::shared_ptr<ConfigurationServiceProvider>, MessagePtr&&, Address&&,
    std::shared_ptr<Context>&&) = &RequestOfTheService::deliver;

#ifdef TEST_SLOTS_ARE_KNOWN
TEST(ServiceMessage, HasDeliverInTheSlotAfterItsDestructors) {
    EXPECT_EQ(2u, test::slotOf(deliver));
}
#else
static_assert(std::is_member_function_pointer_v<decltype(deliver)>);
#endif

template <typename Field>
std::size_t offsetOf(const Message& message, const Field& field) {
    return static_cast<std::size_t>(reinterpret_cast<const char*>(&field) -
                                    reinterpret_cast<const char*>(&message));
}

TEST(ConfigurationGet, HoldsItsKeyRightAfterTheVirtualTablePointer) {
    const ConfigurationGet get("net.port");
    EXPECT_EQ("net.port", get.key);
    EXPECT_EQ(sizeof(void*), offsetOf(get, get.key));
    EXPECT_EQ(sizeof(void*) + sizeof(std::string), sizeof(get));
}

TEST(ConfigurationSet, IsConstructedFromKeyThenValueThenSource) {
    const ConfigurationSet set("net.port", 80, "override");
    EXPECT_EQ("net.port", set.key);
    EXPECT_EQ(80, boost::get<int>(set.value));
    EXPECT_EQ("override", set.source);
}

TEST(ConfigurationSet, HoldsKeyThenSourceThenValue) {
    const ConfigurationSet set("net.port", 80, "override");
    EXPECT_EQ(sizeof(void*), offsetOf(set, set.key));
    EXPECT_LT(offsetOf(set, set.key), offsetOf(set, set.source));
    EXPECT_LT(offsetOf(set, set.source), offsetOf(set, set.value));
}

TEST(ConfigurationSet, HoldsACopyOfTheValue) {
    OptionValue value = std::vector<int>{1, 2};
    const ConfigurationSet set("key", value, "");
    boost::get<std::vector<int>>(value).clear();
    EXPECT_THAT(boost::get<std::vector<int>>(set.value), ElementsAre(1, 2));
}

TEST(ConfigurationKeys, HoldsAnEmptyReservedString) {
    const ConfigurationKeys keys;
    EXPECT_EQ("", keys.reserved);
    EXPECT_EQ(sizeof(void*) + sizeof(std::string), sizeof(keys));
}

TEST(AddPropertyFileSource, HoldsTheArgumentsOfTheOperationInOrder) {
    const AddPropertyFileSource add("site", "net", -7, true, u"/etc/\u00e4.properties");
    EXPECT_EQ("site", add.name);
    EXPECT_EQ("net", add.group);
    EXPECT_EQ(-7, add.order);
    EXPECT_TRUE(add.readOnly);
    EXPECT_EQ(u"/etc/\u00e4.properties", add.path);
    EXPECT_EQ(sizeof(void*), offsetOf(add, add.name));
    EXPECT_LT(offsetOf(add, add.name), offsetOf(add, add.group));
    EXPECT_LT(offsetOf(add, add.group), offsetOf(add, add.order));
    EXPECT_LT(offsetOf(add, add.order), offsetOf(add, add.readOnly));
    EXPECT_LT(offsetOf(add, add.readOnly), offsetOf(add, add.path));
}

TEST(AddPropertyFileSource, HoldsAFalseReadOnlyFlag) {
    EXPECT_FALSE(AddPropertyFileSource("site", "", 0, false, u"").readOnly);
}

TEST(ConfigurationOptionResponse, HoldsNoOptionByDefault) {
    EXPECT_EQ(nullptr, ConfigurationOptionResponse().option);
}

TEST(ConfigurationOptionResponse, HoldsACopyOfTheOption) {
    Option option{"key", "source", std::string("value")};
    const ConfigurationOptionResponse response(option);
    option = Option{"other", "other", 1};
    ASSERT_NE(nullptr, response.option);
    EXPECT_NE(&option, response.option.get());
    EXPECT_EQ("key", response.option->key);
    EXPECT_EQ("source", response.option->source);
    EXPECT_EQ("value", boost::get<std::string>(response.option->value));
}

TEST(ConfigurationOptionResponse, HoldsOnlyAPointerToTheOption) {
    EXPECT_EQ(sizeof(Message) + sizeof(void*), sizeof(ConfigurationOptionResponse));
}

TEST(ConfigurationKeysResponse, MovesTheSetOutOfItsArgument) {
    std::set<std::string> keys{"b", "a"};
    const ConfigurationKeysResponse response(std::move(keys));
    EXPECT_THAT(response.keys, ElementsAre("a", "b"));
    EXPECT_THAT(keys, IsEmpty());
}

TEST(Message, HasAVirtualDestructor) {
    bool isDestroyed = false;
    MessagePtr message = std::make_unique<test::TrackedGet>(isDestroyed, "key");
    EXPECT_FALSE(isDestroyed);
    message.reset();
    EXPECT_TRUE(isDestroyed);
}

/// Applications see these names in the texts of failures.
TEST(Message, HasTheTypeNameOfItsClass) {
    EXPECT_STREQ("N9connector7MessageE", typeid(Message).name());
    EXPECT_STREQ("N9connector13configuration16ConfigurationGetE", typeid(ConfigurationGet).name());
    EXPECT_STREQ("N9connector13configuration16ConfigurationSetE", typeid(ConfigurationSet).name());
    EXPECT_STREQ("N9connector13configuration17ConfigurationKeysE",
                 typeid(ConfigurationKeys).name());
    EXPECT_STREQ("N9connector13configuration21AddPropertyFileSourceE",
                 typeid(AddPropertyFileSource).name());
    EXPECT_STREQ("N9connector13configuration27ConfigurationOptionResponseE",
                 typeid(ConfigurationOptionResponse).name());
    EXPECT_STREQ("N9connector13configuration25ConfigurationKeysResponseE",
                 typeid(ConfigurationKeysResponse).name());
    EXPECT_STREQ("N9connector14ServiceMessageINS_13configuration28ConfigurationServiceProviderEEE",
                 typeid(RequestOfTheService).name());
}

} // namespace
