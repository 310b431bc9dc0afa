/// addInMemorySource, addPropertyFileSource and addEnvironmentSource.
#include "configuration/Answers.hpp"
#include "configuration/MutexHolder.hpp"
#include "support/Expect.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <unordered_map>

namespace {

using connector::configuration::OptionValue;
using test::expectThrows;
using test::has;
using test::intOf;
using test::makeConfiguration;
using test::sourcesOf;
using testing::ElementsAre;
using testing::IsEmpty;

/// A property file with the entry port = 80.
class PropertyFile {
public:
    PropertyFile() { std::ofstream(path) << "port = 80\n"; }
    ~PropertyFile() { std::filesystem::remove(path); }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() /
        ("built-source-test-" + std::to_string(::getpid()) + ".properties");
};

const std::u16string missingFile = u"/no-such-directory/a.properties";

TEST(AddInMemorySource, RegistersATable) {
    const auto configuration = makeConfiguration();
    EXPECT_TRUE(configuration->addInMemorySource("table", "net", 5, true, {{"port", 80}}).get());
    const auto answer = configuration->explain("net.port")[1];
    EXPECT_EQ("table", answer.name);
    EXPECT_EQ("net.", answer.group);
    EXPECT_EQ(5, answer.order);
    EXPECT_TRUE(answer.readOnly);
    EXPECT_EQ(80, intOf(*configuration, "net.port"));
}

TEST(AddInMemorySource, EmptiesTheCallersTable) {
    const auto configuration = makeConfiguration();
    std::unordered_map<std::string, OptionValue> values{{"port", 80}};
    configuration->addInMemorySource("table", "", 5, true, std::move(values)).get();
    EXPECT_TRUE(values.empty());
}

TEST(AddInMemorySource, EmptiesTheCallersTableEvenWhenTheNameIsTaken) {
    const auto configuration = makeConfiguration();
    std::unordered_map<std::string, OptionValue> values{{"port", 80}};
    std::ignore = configuration->addInMemorySource("default", "", 5, true, std::move(values));
    EXPECT_TRUE(values.empty());
}

TEST(AddPropertyFileSource, RegistersTheOptionsOfTheFile) {
    const PropertyFile file;
    const auto configuration = makeConfiguration();
    EXPECT_TRUE(
        configuration->addPropertyFileSource("file", "net", 5, true, file.path.u16string()).get());
    EXPECT_THAT(configuration->keys().get(), ElementsAre("net.port"));
    EXPECT_EQ("80", boost::get<std::string>(configuration->get("net.port").get()));
    const auto answer = configuration->explain("net.port")[1];
    EXPECT_EQ("file", answer.name);
    EXPECT_EQ(5, answer.order);
    EXPECT_TRUE(answer.readOnly);
}

TEST(AddPropertyFileSource, RefusesANameThatIsTaken) {
    const PropertyFile file;
    const auto configuration = makeConfiguration();
    auto added =
        configuration->addPropertyFileSource("default", "", 5, true, file.path.u16string());
    expectThrows<std::invalid_argument>("Source with the requested name already exists: default",
                                        [&] { added.get(); });
    EXPECT_THAT(configuration->keys().get(), IsEmpty());
}

TEST(AddPropertyFileSource, ThrowsForAFileThatCannotBeOpened) {
    const auto configuration = makeConfiguration();
    expectThrows<std::runtime_error>(
        "Property file could not be opened: /no-such-directory/a.properties",
        [&] { configuration->addPropertyFileSource("file", "", 5, true, missingFile).get(); });
}

TEST(AddPropertyFileSource, LeavesTheNameFreeAfterAFailure) {
    const auto configuration = makeConfiguration();
    EXPECT_ANY_THROW(std::ignore =
                         configuration->addPropertyFileSource("file", "", 5, true, missingFile));
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
    EXPECT_TRUE(configuration->addInMemorySource("file", "", 5, true, {}).get());
}

TEST(AddPropertyFileSource, OpensTheFileBeforeItChecksTheName) {
    const auto configuration = makeConfiguration();
    expectThrows<std::runtime_error>(
        "Property file could not be opened: /no-such-directory/a.properties",
        [&] { configuration->addPropertyFileSource("default", "", 5, true, missingFile).get(); });
}

TEST(AddPropertyFileSource, OpensTheFileWithoutTheMutex) {
    const auto configuration = makeConfiguration();
    EXPECT_FALSE(test::waitsForMutex(*configuration, [&] {
        EXPECT_ANY_THROW(
            std::ignore = configuration->addPropertyFileSource("file", "", 5, true, missingFile));
    }));
}

TEST(AddEnvironmentSource, AddsNothing) {
    const auto configuration = makeConfiguration();
    EXPECT_FALSE(configuration->addEnvironmentSource("environment", "env", 5).get());
    EXPECT_THAT(sourcesOf(*configuration), ElementsAre("override", "default"));
    EXPECT_FALSE(configuration->removeSource("environment").get());
}

TEST(AddEnvironmentSource, ReadsNoEnvironmentVariable) {
    ASSERT_EQ(0, ::setenv("BUILT_SOURCE_TEST", "set", 1));
    const auto configuration = makeConfiguration();
    configuration->addEnvironmentSource("environment", "", 5).get();
    EXPECT_FALSE(has(*configuration, "BUILT_SOURCE_TEST"));
}

TEST(AddEnvironmentSource, LeavesTheNameFree) {
    const auto configuration = makeConfiguration();
    configuration->addEnvironmentSource("environment", "", 5).get();
    EXPECT_TRUE(configuration->addInMemorySource("environment", "", 5, false, {}).get());
}

TEST(AddEnvironmentSource, AcceptsANameThatIsTaken) {
    EXPECT_FALSE(makeConfiguration()->addEnvironmentSource("default", "", 5).get());
}

TEST(AddEnvironmentSource, TakesNoMutex) {
    const auto configuration = makeConfiguration();
    EXPECT_FALSE(test::waitsForMutex(
        *configuration, [&] { configuration->addEnvironmentSource("environment", "", 5).get(); }));
}

} // namespace
