/// What all sources of the library have in common. The list at the end names the kinds of sources.

#include "configuration/properties/parsing/Observation.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/sources/InMemorySource.hpp>
#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <ostream>
#include <sstream>

namespace test {

namespace {

using connector::configuration::ConfigurationSource;
using connector::configuration::InMemorySource;
using connector::configuration::OptionValue;
using connector::configuration::PropertyFileSource;

using Texts = std::map<std::string, std::string>;

/// Creates sources of one kind and changes their values.
struct SourceKind {
    std::string name;
    std::function<std::shared_ptr<ConfigurationSource>(const Texts&)> make;
    std::function<void(ConfigurationSource&, const std::string& key, const std::string& value)>
        change;
};

std::ostream& operator<<(std::ostream& stream, const SourceKind& kind) {
    return stream << kind.name;
}

std::shared_ptr<ConfigurationSource> makeInMemorySource(const Texts& texts) {
    return std::make_shared<InMemorySource>(
        std::unordered_map<std::string, OptionValue>(texts.begin(), texts.end()));
}

void changeInMemorySource(ConfigurationSource& source, const std::string& key,
                          const std::string& value) {
    source.set(key, value);
}

void changePropertyFileSource(ConfigurationSource& source, const std::string& key,
                              const std::string& value) {
    std::istringstream line(key + "=" + value + "\n");
    dynamic_cast<PropertyFileSource&>(source).parseStream(line);
}

std::shared_ptr<ConfigurationSource> makePropertyFileSource(const Texts& texts) {
    const auto source = makeEmptyPropertyFileSource();
    for (const auto& [key, value] : texts)
        changePropertyFileSource(*source, key, value);
    return source;
}

} // namespace

class SourceConformance : public testing::TestWithParam<SourceKind> {
protected:
    std::shared_ptr<ConfigurationSource> make(const Texts& texts) { return GetParam().make(texts); }

    void change(ConfigurationSource& source, const std::string& key, const std::string& value) {
        GetParam().change(source, key, value);
    }

    /// @return a watcher that records the keys
    ConfigurationSource::Watcher recorder() {
        return [this](const std::string& key) { watched.push_back(key); };
    }

    std::vector<std::string> watched;
};

TEST_P(SourceConformance, AnEmptySourceHasNoKeys) {
    const auto source = make({});
    EXPECT_EQ(std::set<std::string>(), source->keys());
    EXPECT_FALSE(source->has("a"));
    EXPECT_FALSE(source->has(""));
}

TEST_P(SourceConformance, GetReturnsTheValueAsAnEightBitString) {
    const OptionValue value = make({{"a", "b"}})->get("a");
    EXPECT_EQ(5, value.which());
    EXPECT_EQ("b", boost::get<std::string>(value));
}

TEST_P(SourceConformance, GetReturnsTheSameTwice) {
    const auto source = make({{"a", "b"}});
    EXPECT_EQ("b", boost::get<std::string>(source->get("a")));
    EXPECT_EQ("b", boost::get<std::string>(source->get("a")));
}

TEST_P(SourceConformance, GetReturnsACopyThatSharesNothing) {
    const auto source = make({{"a", std::string(100, 'b')}});
    OptionValue copy = source->get("a");
    boost::get<std::string>(copy)[0] = 'x';
    EXPECT_EQ(std::string(100, 'b'), boost::get<std::string>(source->get("a")));
}

TEST_P(SourceConformance, GetOfAMissingKeyThrowsOutOfRange) {
    const auto source = make({{"a", "b"}});
    expectThrows<std::out_of_range>("unordered_map::at: key not found",
                                    [&] { source->get("missing"); });
}

TEST_P(SourceConformance, GetOfAMissingKeyDoesNotCreateIt) {
    const auto source = make({{"a", "b"}});
    EXPECT_THROW(source->get("missing"), std::out_of_range);
    EXPECT_FALSE(source->has("missing"));
    EXPECT_EQ((std::set<std::string>{"a"}), source->keys());
}

TEST_P(SourceConformance, HasIsTrueOnlyForKeysOfTheTable) {
    const auto source = make({{"net.port", "1"}, {"net", "2"}});
    EXPECT_TRUE(source->has("net.port"));
    EXPECT_TRUE(source->has("net"));
    EXPECT_FALSE(source->has("net."));
    EXPECT_FALSE(source->has("port"));
    EXPECT_FALSE(source->has("net.port2"));
    EXPECT_FALSE(source->has("NET"));
    EXPECT_FALSE(source->has(""));
    EXPECT_FALSE(source->has(std::string("net\0", 4)));
}

TEST_P(SourceConformance, TheEmptyKeyIsAKey) {
    const auto source = make({{"", "b"}});
    EXPECT_TRUE(source->has(""));
    EXPECT_EQ("b", boost::get<std::string>(source->get("")));
    EXPECT_EQ((std::set<std::string>{""}), source->keys());
}

TEST_P(SourceConformance, TheEmptyValueIsAValue) {
    const auto source = make({{"a", ""}});
    EXPECT_TRUE(source->has("a"));
    EXPECT_EQ("", boost::get<std::string>(source->get("a")));
}

TEST_P(SourceConformance, KeysAreSortedByTheirBytes) {
    const std::set<std::string> keys =
        make({{"b", ""}, {"a", ""}, {"B", ""}, {"\xC3\xA9", ""}, {"aa", ""}, {"~", ""}})->keys();
    EXPECT_EQ((std::vector<std::string>{"B", "a", "aa", "b", "~", "\xC3\xA9"}),
              std::vector<std::string>(keys.begin(), keys.end()));
}

TEST_P(SourceConformance, KeysAreACopyThatDoesNotChangeLater) {
    const auto source = make({{"a", "b"}});
    const std::set<std::string> before = source->keys();
    change(*source, "c", "d");
    EXPECT_EQ((std::set<std::string>{"a"}), before);
    EXPECT_EQ((std::set<std::string>{"a", "c"}), source->keys());
}

TEST_P(SourceConformance, AChangeIsSeenByGetAndHas) {
    const auto source = make({{"a", "b"}});
    change(*source, "a", "x");
    change(*source, "c", "d");
    EXPECT_EQ((Texts{{"a", "x"}, {"c", "d"}}), optionsOf(*source));
    EXPECT_TRUE(source->has("c"));
}

TEST_P(SourceConformance, ManyKeysAreAllKept) {
    Texts texts;
    for (int i = 0; i < 5000; ++i)
        texts["key" + std::to_string(i)] = std::to_string(i);
    EXPECT_EQ(texts, optionsOf(*make(texts)));
}

TEST_P(SourceConformance, AChangeWithoutAWatcherSucceeds) {
    const auto source = make({});
    EXPECT_NO_THROW(change(*source, "a", "b"));
    EXPECT_TRUE(source->has("a"));
}

TEST_P(SourceConformance, TheWatcherIsCalledWithTheKeyOfEachChange) {
    const auto source = make({{"a", "b"}});
    source->setWatcher(recorder());
    change(*source, "a", "x");
    change(*source, "c", "d");
    EXPECT_EQ((std::vector<std::string>{"a", "c"}), watched);
}

TEST_P(SourceConformance, TheWatcherIsCalledEvenWhenTheValueStaysTheSame) {
    const auto source = make({{"a", "b"}});
    source->setWatcher(recorder());
    change(*source, "a", "b");
    EXPECT_EQ((std::vector<std::string>{"a"}), watched);
}

TEST_P(SourceConformance, TheWatcherIsNotCalledWhenItIsSet) {
    const auto source = make({{"a", "b"}});
    source->setWatcher(recorder());
    EXPECT_EQ(std::vector<std::string>(), watched);
}

TEST_P(SourceConformance, TheWatcherIsNotCalledByReading) {
    const auto source = make({{"a", "b"}});
    source->setWatcher(recorder());
    source->get("a");
    source->has("a");
    source->keys();
    EXPECT_EQ(std::vector<std::string>(), watched);
}

TEST_P(SourceConformance, TheWatcherSeesTheNewValue) {
    const auto source = make({{"a", "b"}});
    std::string seen;
    source->setWatcher([&](const std::string& key) {
        seen = key + "=" + boost::get<std::string>(source->get(key));
    });
    change(*source, "a", "x");
    EXPECT_EQ("a=x", seen);
    change(*source, "c", "d");
    EXPECT_EQ("c=d", seen);
}

TEST_P(SourceConformance, ANewWatcherReplacesTheOld) {
    const auto source = make({});
    source->setWatcher([](const std::string&) { ADD_FAILURE() << "the old watcher"; });
    source->setWatcher(recorder());
    change(*source, "a", "b");
    EXPECT_EQ((std::vector<std::string>{"a"}), watched);
}

TEST_P(SourceConformance, AReplacedWatcherIsDestroyed) {
    const auto source = make({});
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> observed = held;
    source->setWatcher([held = std::move(held)](const std::string&) {});
    EXPECT_FALSE(observed.expired());
    source->setWatcher(recorder());
    EXPECT_TRUE(observed.expired());
}

TEST_P(SourceConformance, AnEmptyWatcherDisablesNotification) {
    const auto source = make({});
    source->setWatcher(recorder());
    source->setWatcher(ConfigurationSource::Watcher());
    change(*source, "a", "b");
    EXPECT_EQ(std::vector<std::string>(), watched);
    EXPECT_TRUE(source->has("a"));
}

TEST_P(SourceConformance, ASourceThatIsDestroyedDestroysItsWatcher) {
    auto source = make({});
    auto held = std::make_shared<int>();
    const std::weak_ptr<int> observed = held;
    source->setWatcher([held = std::move(held)](const std::string&) {});
    source.reset();
    EXPECT_TRUE(observed.expired());
}

TEST_P(SourceConformance, AWatcherThatThrowsLeavesTheValueStored) {
    const auto source = make({{"a", "b"}});
    source->setWatcher([](const std::string& key) { throw std::range_error("watcher of " + key); });
    expectThrows<std::range_error>("watcher of a", [&] { change(*source, "a", "x"); });
    EXPECT_EQ("x", boost::get<std::string>(source->get("a")));
}

TEST_P(SourceConformance, TheWatcherIsUsableAfterItThrew) {
    const auto source = make({});
    bool throws = true;
    source->setWatcher([&](const std::string& key) {
        if (throws)
            throw std::range_error("watcher");
        watched.push_back(key);
    });
    EXPECT_THROW(change(*source, "a", "b"), std::range_error);
    throws = false;
    change(*source, "c", "d");
    EXPECT_EQ((std::vector<std::string>{"c"}), watched);
}

INSTANTIATE_TEST_SUITE_P(
    Sources, SourceConformance,
    testing::Values(SourceKind{"InMemory", makeInMemorySource, changeInMemorySource},
                    SourceKind{"PropertyFile", makePropertyFileSource, changePropertyFileSource}),
    [](const auto& info) { return info.param.name; });

} // namespace test
