/// Reading and changing the options of a service.
#include "service/client/ServedConfiguration.hpp"

#include <cmath>
#include <limits>
#include <vector>

namespace {

using connector::configuration::Option;
using connector::configuration::OptionValue;
using connector::configuration::SourceAnswer;
using connector::service::ServiceError;
using test::errorOf;

class HttpClientTest : public test::ServedConfiguration {
protected:
    HttpClientTest() {
        configuration->set("net.port", 8080).get();
        configuration->set("db.password", std::string("hush")).get();
    }
};

TEST_F(HttpClientTest, GetsOptionsWithSecrets) {
    start();
    HttpClient client(clientOptions());
    const auto option = client.get("db.password");
    ASSERT_TRUE(option);
    EXPECT_EQ("db.password", option->key);
    EXPECT_EQ("override", option->source);
    EXPECT_TRUE(OptionValue(std::string("hush")) == option->value);
    EXPECT_FALSE(client.get("net.proxy"));
}

TEST_F(HttpClientTest, GetsWhatItHasSet) {
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<OptionValue> values{
        true,
        std::numeric_limits<int>::min(),
        std::numeric_limits<unsigned int>::max(),
        0.1,
        1.0,
        1e300,
        -0.0,
        std::u16string(u"gr\u00fc\u00df"),
        std::string("a\n\"b\""),
        std::string("nul\0", 4),
        std::vector<bool>{true, false},
        std::vector<int>{},
        std::vector<int>{-1, 2},
        std::vector<unsigned int>{7},
        std::vector<double>{1, 2.5},
        std::vector<std::string>{"a", ""},
        std::vector<std::u16string>{u"x"},
    };
    start();
    HttpClient client(clientOptions());
    for (const OptionValue& value : values) {
        SCOPED_TRACE(&value - values.data());
        client.set("net.x", value);
        EXPECT_TRUE(value == client.get("net.x")->value);
        EXPECT_TRUE(value == configuration->get("net.x").get());
    }
    EXPECT_EQ(422u, errorOf([&] { client.set("net.x", infinity); }).status());
}

TEST_F(HttpClientTest, GetsNumbersThatJsonDoesNotHave) {
    using Limits = std::numeric_limits<double>;
    const std::vector<double> infinities{1.5, Limits::infinity(), -Limits::infinity()};
    configuration->set("net.all", infinities).get();
    configuration->set("net.max", infinities[1]).get();
    configuration->set("net.min", infinities[2]).get();
    configuration->set("net.none", Limits::quiet_NaN()).get();
    configuration->set("net.text", std::string("inf")).get();
    start();
    HttpClient client(clientOptions());
    EXPECT_TRUE(OptionValue(infinities) == client.get("net.all")->value);
    EXPECT_TRUE(OptionValue(infinities[1]) == client.get("net.max")->value);
    EXPECT_TRUE(OptionValue(infinities[2]) == client.get("net.min")->value);
    EXPECT_TRUE(std::isnan(boost::get<double>(client.get("net.none")->value)));
    EXPECT_TRUE(OptionValue(std::string("inf")) == client.get("net.text")->value);
    EXPECT_EQ(7u, client.list().size());
}

TEST_F(HttpClientTest, ListsOptionsAndKeys) {
    configuration->set("net.host", std::string("h")).get();
    start();
    HttpClient client(clientOptions());
    const std::vector<Option> all = client.list();
    ASSERT_EQ(3u, all.size());
    EXPECT_EQ("db.password", all[0].key);
    EXPECT_TRUE(OptionValue(std::string("******")) == all[0].value);
    EXPECT_EQ("net.host", all[1].key);
    EXPECT_TRUE(OptionValue(8080) == all[2].value);
    EXPECT_EQ(2u, client.list("net.").size());
    configuration->set("gr\u00fcn", 1).get();
    EXPECT_EQ(1u, client.list("gr\xc3").size()); // a prefix may end inside a character
    EXPECT_EQ(1u, client.keys("gr\xc3").size());
    configuration->reset("gr\u00fcn").get();
    EXPECT_EQ(0u, client.list("x").size());
    EXPECT_EQ((std::set<std::string>{"db.password", "net.host", "net.port"}), client.keys());
    EXPECT_EQ((std::set<std::string>{"net.host", "net.port"}), client.keys("net."));
    EXPECT_EQ(std::set<std::string>(), client.keys("x"));
}

TEST_F(HttpClientTest, ListsMoreThanRequestsMayHave) {
    const std::string text(3000, 'x');
    for (int i = 0; i < 2000; ++i)
        configuration->set("net." + std::to_string(i), text).get();
    configuration->set("net.list", std::vector<int>(200000, 7)).get();
    start();
    HttpClient client(clientOptions());
    EXPECT_EQ(2003u, client.list().size());
    EXPECT_TRUE(OptionValue(std::vector<int>(200000, 7)) == client.get("net.list")->value);
}

TEST_F(HttpClientTest, ExplainsLikeTheConfiguration) {
    configuration->set("net.port", 1, "default").get();
    start();
    HttpClient client(clientOptions());
    const std::vector<SourceAnswer> expected = configuration->explain("net.port");
    const std::vector<SourceAnswer> answers = client.explain("net.port");
    ASSERT_EQ(expected.size(), answers.size());
    for (std::size_t i = 0; i < answers.size(); ++i) {
        EXPECT_EQ(expected[i].name, answers[i].name);
        EXPECT_EQ(expected[i].group, answers[i].group);
        EXPECT_EQ(expected[i].order, answers[i].order);
        EXPECT_EQ(expected[i].readOnly, answers[i].readOnly);
        EXPECT_EQ(expected[i].servesKey, answers[i].servesKey);
        EXPECT_TRUE(expected[i].value == answers[i].value);
    }
}

TEST_F(HttpClientTest, ResetsOptions) {
    start();
    HttpClient client(clientOptions());
    EXPECT_TRUE(client.reset("net.port"));
    EXPECT_FALSE(configuration->has("net.port").get());
    EXPECT_FALSE(client.reset("net.port"));
}

TEST_F(HttpClientTest, TakesKeysOfAllCharacters) {
    start();
    HttpClient client(clientOptions());
    for (const std::string key :
         {"net./", "net.?a=b&c#d", "net.%41", "net. +", "net.gr\u00fcn", "net.\"\\", "net..."}) {
        SCOPED_TRACE(key);
        client.set(key, 1);
        EXPECT_EQ(key, client.get(key)->key);
        EXPECT_EQ(1u, client.list(key).size());
        EXPECT_TRUE(client.reset(key));
    }
}

TEST_F(HttpClientTest, RefusesTextThatJsonCannotCarry) {
    start();
    HttpClient client(clientOptions());
    EXPECT_STREQ("Text is not valid UTF-8: \xff", errorOf([&] { client.get("\xff"); }).what());
    const std::string invalid = "\xff";
    EXPECT_STREQ("Value is not valid UTF-8: net.x",
                 errorOf([&] { client.set("net.x", invalid); }).what());
    EXPECT_STREQ("Value is not valid UTF-8: net.x",
                 errorOf([&] { client.set("net.x", std::vector<std::string>{invalid}); }).what());
    EXPECT_STREQ("Text is not valid UTF-16: net.x",
                 errorOf([&] { client.set("net.x", std::u16string(1, 0xD800)); }).what());
    EXPECT_FALSE(configuration->has("net.x").get());
}

TEST_F(HttpClientTest, ReportsWhatTheServiceRefuses) {
    start();
    HttpClient client(clientOptions());
    const ServiceError error = errorOf([&] { client.set("db.x", 1); });
    EXPECT_EQ(403u, error.status());
    EXPECT_EQ("db.x", error.key());
    EXPECT_STREQ("Key must not be set: db.x (--writable PREFIX would allow it)", error.what());
    EXPECT_EQ(403u, errorOf([&] { client.reset("db.x"); }).status());
}

TEST_F(HttpClientTest, SendsTheToken) {
    options.tokenFile = directory.write("token", "s3cret\n").string();
    start();
    HttpClientOptions withToken = clientOptions();
    withToken.tokenFile = options.tokenFile;
    EXPECT_TRUE(HttpClient(withToken).get("net.port"));
    EXPECT_EQ(401u, errorOf([&] { HttpClient(clientOptions()).get("net.port"); }).status());
}

TEST_F(HttpClientTest, ReadsItsFilesAtOnce) {
    HttpClientOptions client;
    client.url = "http://localhost:1";
    client.tokenFile = "no/such";
    EXPECT_THROW(HttpClient{client}, std::runtime_error);
    client.tokenFile.reset();
    client.url = "ftp://localhost:1";
    EXPECT_THROW(HttpClient{client}, std::invalid_argument);
}

} // namespace
