#include "commands/OptionReader.hpp"

#include <connector/configuration/sources/ConfigurationSource.hpp>

#include <connector/sources/TableSource.hpp>

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

namespace {

using connector::configuration::ConfigurationImpl;
using connector::configuration::ConfigurationSource;
using connector::configuration::OptionValue;
using connector::sources::Table;
using connector::sources::TableSource;
using connector_config::LocalOptions;

/// All options always have the same value.
class Uniform : public TableSource {
public:
    Uniform() { next(); }

    void next() {
        ++value;
        exchangeTable(Table{{"a", OptionValue(value)}, {"b", OptionValue(value)}});
    }

private:
    int value = 0;
};

/// Replaces the table of another source whenever it is asked.
class Disturbance : public ConfigurationSource {
public:
    explicit Disturbance(std::shared_ptr<Uniform> newOther) : other(std::move(newOther)) {}

    bool has(const std::string&) override {
        other->next();
        return false;
    }
    OptionValue get(const std::string& key) override { throw std::out_of_range(key); }
    OptionValue set(const std::string&, OptionValue value) override { return value; }
    std::set<std::string> keys() override { return {}; }
    void setWatcher(Watcher) override {}

private:
    const std::shared_ptr<Uniform> other;
};

class LocalOptionsTest : public testing::Test {
protected:
    LocalOptionsTest() {
        const auto uniform = std::make_shared<Uniform>();
        configuration.addSource("uniform", "", 60, true, uniform).get();
        configuration.addSource("disturbance", "", 50, true, std::make_shared<Disturbance>(uniform))
            .get();
    }

    ConfigurationImpl configuration;
    LocalOptions reader{configuration};
};

TEST_F(LocalOptionsTest, ListsAreOfOneMoment) {
    const auto options = reader.options("");
    ASSERT_EQ(2u, options.size());
    EXPECT_TRUE(options.front().value == options.back().value);
}

TEST_F(LocalOptionsTest, AnswersForSeveralKeysAreOfOneMoment) {
    const auto answers = reader.answers({"b", "missing", "a", "b"});
    ASSERT_EQ(4u, answers.size());
    EXPECT_EQ("No option with the specified key was found: missing", answers[1].failure);
    EXPECT_FALSE(answers[1].option);
    for (const std::size_t i : {0u, 2u, 3u})
        ASSERT_TRUE(answers[i].option) << i;
    EXPECT_TRUE(answers[0].option->value == answers[2].option->value);
    EXPECT_TRUE(answers[0].option->value == answers[3].option->value);
}

} // namespace
