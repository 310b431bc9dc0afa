#include "configuration/properties/parsing/Observation.hpp"

#include "configuration/properties/parsing/ReferenceParser.hpp"
#include "support/LogCapture.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <gtest/gtest.h>

#include <istream>
#include <stdexcept>
#include <tuple>
#include <typeinfo>

namespace test {

namespace {

const std::string logEvent = "log: ";
const std::string watcherEvent = "watcher: ";

std::vector<std::string> eventsOf(const Observation& observation, const std::string& kind) {
    std::vector<std::string> texts;
    for (const ParseEvent& event : observation.events) {
        if (event.text.compare(0, kind.size(), kind) == 0)
            texts.push_back(event.text.substr(kind.size()));
    }
    return texts;
}

/// The buffer, the stream and the listeners of one parse.
class Observer {
public:
    explicit Observer(const ParseInput& newInput)
        : input(newInput),
          buffer(makeSupplyBuffer(input.supply, input.text, input.pieceSize, input.end)),
          stream(buffer.get()) {
        buffer->attach(stream);
        stream.exceptions(input.exceptions);
    }

    template <typename Parse>
    void run(Parse parse) {
        const ParseListeners listeners{
            [this](const std::string& line) { record(logEvent + line); },
            [this](const std::string& key) { record(watcherEvent + key); },
        };
        try {
            parse(stream, listeners);
        } catch (const std::exception& thrown) {
            observation.thrown = std::string(typeid(thrown).name()) + ": " + thrown.what();
        }
        observation.position = position();
        observation.state = stream.rdstate();
    }

    Observation observation;

private:
    // Not tellg, which returns -1 for a stream that has failed.
    std::streamoff position() {
        return buffer->pubseekoff(0, std::ios_base::cur, std::ios_base::in);
    }

    void record(const std::string& text) {
        observation.events.push_back({text, position(), stream.rdstate()});
        if (observation.events.size() == input.throwingEvent)
            throw std::logic_error("thrown by a listener");
    }

    const ParseInput input;
    const std::unique_ptr<SupplyBuffer> buffer;
    std::istream stream;
};

} // namespace

bool operator==(const ParseEvent& left, const ParseEvent& right) {
    return std::tie(left.text, left.position, left.state) ==
           std::tie(right.text, right.position, right.state);
}

std::ostream& operator<<(std::ostream& stream, const ParseEvent& event) {
    return stream << testing::PrintToString(event.text) << " at " << event.position << " in state "
                  << event.state;
}

std::vector<std::string> Observation::logLines() const {
    return eventsOf(*this, logEvent);
}

std::vector<std::string> Observation::watchedKeys() const {
    return eventsOf(*this, watcherEvent);
}

Observation observeLibrary(const ParseInput& input) {
    Observer observer(input);
    const auto source = makeEmptyPropertyFileSource();
    observer.run([&source](std::istream& stream, const ParseListeners& listeners) {
        const LogCapture log([&](const LogRecord& record) { listeners.log(record.message); });
        foundation::log::set_diagnostic_mask("connector::configuration::property_file", 16);
        source->setWatcher(listeners.watcher);
        source->parseStream(stream);
    });
    observer.observation.options = optionsOf(*source);
    return observer.observation;
}

Observation observeReference(const ParseInput& input) {
    Observer observer(input);
    std::map<std::string, std::string> options;
    observer.run([&options](std::istream& stream, const ParseListeners& listeners) {
        parseByReference(stream, options, listeners);
    });
    observer.observation.options = options;
    return observer.observation;
}

void expectSameProperties(const Observation& expected, const Observation& actual) {
    EXPECT_EQ(expected.options, actual.options);
    EXPECT_EQ(expected.logLines(), actual.logLines());
    EXPECT_EQ(expected.watchedKeys(), actual.watchedKeys());
}

void expectSame(const Observation& expected, const Observation& actual) {
    EXPECT_EQ(expected.options, actual.options);
    EXPECT_EQ(expected.events, actual.events);
    EXPECT_EQ(expected.thrown, actual.thrown);
    EXPECT_EQ(expected.position, actual.position);
    EXPECT_EQ(expected.state, actual.state);
}

std::shared_ptr<connector::configuration::PropertyFileSource> makeEmptyPropertyFileSource() {
    return std::make_shared<connector::configuration::PropertyFileSource>(u"/dev/null");
}

std::map<std::string, std::string>
optionsOf(connector::configuration::ConfigurationSource& source) {
    std::map<std::string, std::string> options;
    for (const std::string& key : source.keys())
        options[key] = boost::get<std::string>(source.get(key));
    return options;
}

} // namespace test
