/// The diagnostic lines of property files.

#include "configuration/properties/parsing/Observation.hpp"
#include "support/Expect.hpp"
#include "support/LogCapture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/sources/PropertyFileSource.hpp>
#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/log/attributes/attribute_value_set.hpp>
#include <boost/log/core.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace test {

namespace {

using connector::configuration::PropertyFileSource;

constexpr const char* loggerName = "connector::configuration::property_file";

void parse(PropertyFileSource& source, const std::string& text) {
    std::istringstream stream(text);
    source.parseStream(stream);
}

/// Counts the log records that are started. The filter runs at the first step of a record.
class RecordCount {
public:
    RecordCount() {
        boost::log::core::get()->set_filter([this](const boost::log::attribute_value_set&) {
            ++count;
            return true;
        });
    }
    ~RecordCount() { boost::log::core::get()->reset_filter(); }
    RecordCount(const RecordCount&) = delete;
    RecordCount& operator=(const RecordCount&) = delete;

    int count = 0;
};

} // namespace

TEST(PropertyFileLog, TheLoggerIsFoundByItsName) {
    const auto source = makeEmptyPropertyFileSource();
    EXPECT_TRUE(foundation::log::set_diagnostic_mask(loggerName, 0));
}

TEST(PropertyFileLog, ALineHasTheChannelAndSeverityOfPropertyFiles) {
    const auto source = makeEmptyPropertyFileSource();
    const PropertyFileLog log;
    parse(*source, "a=b\nc=d");
    const std::vector<LogRecord> records = log.records();
    ASSERT_EQ(2u, records.size());
    for (const LogRecord& record : records) {
        EXPECT_EQ("connector::configuration::property_file", record.channel);
        EXPECT_EQ(16u, record.severity);
    }
}

TEST(PropertyFileLog, EachPropertyIsLoggedAndALastOneWithoutALineBreakIsFinal) {
    const auto source = makeEmptyPropertyFileSource();
    const PropertyFileLog log;
    parse(*source, "a=b\nkey = some value\nc=d");
    EXPECT_EQ(
        (std::vector<std::string>{"Parsed property: a = b", "Parsed property: key = some value",
                                  "Parsed final property: c = d"}),
        log.lines());
}

TEST(PropertyFileLog, LinesAreInTheOrderOfTheFile) {
    const auto source = makeEmptyPropertyFileSource();
    const PropertyFileLog log;
    parse(*source, "z=1\na=2\nz=3\n");
    EXPECT_EQ((std::vector<std::string>{"Parsed property: z = 1", "Parsed property: a = 2",
                                        "Parsed property: z = 3"}),
              log.lines());
}

TEST(PropertyFileLog, TheConstructorWritesTheLinesOfTheFile) {
    const TemporaryDirectory directory;
    const auto path = directory.write("log.properties", "a=b\nc=d");
    const PropertyFileLog log;
    const PropertyFileSource source(path.u16string());
    EXPECT_EQ((std::vector<std::string>{"Parsed property: a = b", "Parsed final property: c = d"}),
              log.lines());
}

TEST(PropertyFileLog, ALineIsWrittenWhenThePropertyIsStoredAndBeforeTheWatcherIsCalled) {
    const auto source = makeEmptyPropertyFileSource();
    std::vector<std::string> events;
    const LogCapture log([&](const LogRecord&) {
        events.push_back("logged, stored " + boost::get<std::string>(source->get("a")));
    });
    foundation::log::set_diagnostic_mask(loggerName, 16);
    source->setWatcher([&](const std::string&) { events.push_back("watched"); });
    parse(*source, "a=b\n");
    EXPECT_EQ((std::vector<std::string>{"logged, stored b", "watched"}), events);
}

TEST(PropertyFileLog, NothingIsLoggedForWhatIsNotStored) {
    const auto source = makeEmptyPropertyFileSource();
    const PropertyFileLog log;
    parse(*source, "# comment\n\nlost=");
    EXPECT_EQ(std::vector<std::string>(), log.lines());
}

TEST(PropertyFileLog, OtherOperationsLogNothing) {
    const auto source = makeEmptyPropertyFileSource();
    parse(*source, "a=b\n");
    const PropertyFileLog log;
    source->get("a");
    source->has("a");
    source->keys();
    source->setWatcher(nullptr);
    EXPECT_ANY_THROW(source->set("a", 1));
    EXPECT_ANY_THROW(source->get("missing"));
    EXPECT_EQ(std::vector<std::string>(), log.lines());
}

TEST(PropertyFileLog, NoRecordIsStartedByDefault) {
    const RecordCount records;
    const auto source = makeEmptyPropertyFileSource();
    parse(*source, "a=b\nc=d");
    EXPECT_EQ(0, records.count);
}

TEST(PropertyFileLog, NoRecordIsStartedWhileTheBitIsOff) {
    const auto source = makeEmptyPropertyFileSource();
    const LogCapture log;
    foundation::log::set_diagnostic_mask(loggerName, ~16u);
    const RecordCount records;
    parse(*source, "a=b\nc=d");
    EXPECT_EQ(0, records.count);
    EXPECT_EQ((std::map<std::string, std::string>{{"a", "b"}, {"c", "d"}}), optionsOf(*source));
}

TEST(PropertyFileLog, OneRecordIsStartedForEachPropertyWhileTheBitIsOn) {
    const auto source = makeEmptyPropertyFileSource();
    const PropertyFileLog log;
    const RecordCount records;
    parse(*source, "a=b\nc=d");
    EXPECT_EQ(2, records.count);
}

TEST(PropertyFileLog, TheBitMayBeSwitchedOnInTheMiddleOfAFile) {
    const auto source = makeEmptyPropertyFileSource();
    const LogCapture log;
    source->setWatcher([](const std::string& key) {
        foundation::log::set_diagnostic_mask(loggerName, key == "a" ? 16 : 0);
    });
    parse(*source, "a=1\nb=2\nc=3\n");
    EXPECT_EQ((std::vector<std::string>{"Parsed property: b = 2"}), log.lines());
}

TEST(PropertyFileLog, TheMaskOfTheCoreLoggerMakesNoDifference) {
    const auto source = makeEmptyPropertyFileSource();
    const LogCapture log;
    foundation::log::set_diagnostic_mask("connector::configuration", ~0u);
    parse(*source, "a=b\n");
    EXPECT_EQ(std::vector<std::string>(), log.lines());
}

TEST(PropertyFileLog, AThrowingSinkLeavesThePropertyStoredButNotReported) {
    const auto source = makeEmptyPropertyFileSource();
    const LogCapture log([](const LogRecord&) { throw std::domain_error("sink"); });
    foundation::log::set_diagnostic_mask(loggerName, 16);
    source->setWatcher([](const std::string&) { ADD_FAILURE() << "watched"; });
    expectThrows<std::domain_error>("sink", [&] { parse(*source, "a=b\nc=d\n"); });
    EXPECT_EQ((std::map<std::string, std::string>{{"a", "b"}}), optionsOf(*source));
}

} // namespace test
