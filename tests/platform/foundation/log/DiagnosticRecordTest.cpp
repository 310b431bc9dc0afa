/// The records that a logger passes to the logging core.

#include "support/Expect.hpp"
#include "support/LogCapture.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/log/attributes/attribute_value_set.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/unlocked_frontend.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <typeindex>
#include <utility>
#include <vector>

namespace test {

namespace {

using foundation::log::basic_diagnostic_logger;
using RecordView = boost::log::record_view;

class CallbackBackend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::concurrent_feeding> {
public:
    explicit CallbackBackend(std::function<void(const RecordView&)> newCallback)
        : callback(std::move(newCallback)) {}

    void consume(const RecordView& view) { callback(view); }

private:
    const std::function<void(const RecordView&)> callback;
};

/// A sink of the core, as an application adds one.
class Sink {
public:
    explicit Sink(std::function<void(const RecordView&)> callback)
        : sink(boost::make_shared<Frontend>(
              boost::make_shared<CallbackBackend>(std::move(callback)))) {
        boost::log::core::get()->add_sink(sink);
    }
    ~Sink() { boost::log::core::get()->remove_sink(sink); }
    Sink(const Sink&) = delete;
    Sink& operator=(const Sink&) = delete;

private:
    using Frontend = boost::log::sinks::unlocked_sink<CallbackBackend>;
    const boost::shared_ptr<Frontend> sink;
};

/// A filter of the core, while it lives.
class Filter {
public:
    explicit Filter(std::function<bool(const boost::log::attribute_value_set&)> filter) {
        boost::log::core::get()->set_filter(std::move(filter));
    }
    ~Filter() { boost::log::core::get()->reset_filter(); }
    Filter(const Filter&) = delete;
    Filter& operator=(const Filter&) = delete;
};

} // namespace

class DiagnosticRecord : public testing::Test {
protected:
    DiagnosticRecord() { logger.set_mask(16 | 8); }

    basic_diagnostic_logger logger{"test::records"};
};

TEST_F(DiagnosticRecord, HasTheChannelAndTheSeverityAndTheMessage) {
    const LogCapture log;
    logger.log(16, "line ", 1);
    ASSERT_EQ(1u, log.records().size());
    EXPECT_EQ("test::records", log.records()[0].channel);
    EXPECT_EQ(16u, log.records()[0].severity);
    EXPECT_EQ("line 1", log.records()[0].message);
}

TEST_F(DiagnosticRecord, HasExactlyTheseAttributes) {
    std::map<std::string, std::type_index> types;
    const Sink sink([&](const RecordView& view) {
        for (const auto& attribute : view.attribute_values()) {
            types.emplace(attribute.first.string(), attribute.second.get_type().type_info());
        }
    });
    logger.log(16, "line");
    EXPECT_EQ((std::map<std::string, std::type_index>{{"Channel", typeid(std::string)},
                                                      {"Message", typeid(std::string)},
                                                      {"Severity", typeid(unsigned int)}}),
              types);
}

TEST_F(DiagnosticRecord, HasTheSeverityWithWhichItWasWritten) {
    const LogCapture log;
    logger.log(8, "eight");
    logger.log(16, "sixteen");
    logger.log(24, "both");
    std::vector<unsigned> severities;
    for (const LogRecord& record : log.records())
        severities.push_back(record.severity);
    EXPECT_EQ((std::vector<unsigned>{8, 16, 24}), severities);
}

TEST_F(DiagnosticRecord, GoesToEverySink) {
    const LogCapture one;
    const LogCapture other;
    logger.log(16, "line");
    EXPECT_EQ((std::vector<std::string>{"line"}), one.lines());
    EXPECT_EQ((std::vector<std::string>{"line"}), other.lines());
}

TEST_F(DiagnosticRecord, IsDroppedWhenAFilterOfTheCoreRejectsIt) {
    const LogCapture log;
    {
        const Filter nothing([](const boost::log::attribute_value_set&) { return false; });
        EXPECT_NO_THROW(logger.log(16, "rejected"));
    }
    logger.log(16, "accepted");
    EXPECT_EQ((std::vector<std::string>{"accepted"}), log.lines());
}

TEST_F(DiagnosticRecord, ShowsItsChannelAndSeverityToTheFiltersOfTheCore) {
    const LogCapture log;
    const Filter sixteenOfTest([](const boost::log::attribute_value_set& values) {
        return boost::log::extract_or_throw<std::string>("Channel", values) == "test::records" &&
               boost::log::extract_or_throw<unsigned int>("Severity", values) == 16;
    });
    logger.log(8, "eight");
    logger.log(16, "sixteen");
    EXPECT_EQ((std::vector<std::string>{"sixteen"}), log.lines());
}

TEST_F(DiagnosticRecord, IsDroppedWhileTheCoreIsSwitchedOff) {
    const LogCapture log;
    boost::log::core::get()->set_logging_enabled(false);
    logger.log(16, "off");
    boost::log::core::get()->set_logging_enabled(true);
    logger.log(16, "on");
    EXPECT_EQ((std::vector<std::string>{"on"}), log.lines());
}

TEST_F(DiagnosticRecord, MakesLogThrowWhatASinkThrows) {
    const LogCapture log(
        [](const LogRecord& record) { throw std::domain_error("sink of " + record.message); });
    expectThrows<std::domain_error>("sink of line", [&] { logger.log(16, "line"); });
}

TEST_F(DiagnosticRecord, MakesLogThrowWhatAFilterThrows) {
    const LogCapture log;
    const Filter throwing(
        [](const boost::log::attribute_value_set&) -> bool { throw std::domain_error("filter"); });
    expectThrows<std::domain_error>("filter", [&] { logger.log(16, "line"); });
    EXPECT_EQ(std::vector<std::string>(), log.lines());
}

TEST_F(DiagnosticRecord, IsWrittenAfterOneForWhichASinkThrew) {
    bool throws = true;
    const LogCapture log([&](const LogRecord&) {
        if (throws)
            throw std::domain_error("sink");
    });
    EXPECT_THROW(logger.log(16, "first"), std::domain_error);
    throws = false;
    logger.log(16, "second");
    EXPECT_EQ((std::vector<std::string>{"first", "second"}), log.lines());
}

} // namespace test
