/// Checks docs/messages.md against the library: every JSON block of its section "The messages" is
/// read and written, and every row of its tables is tried.
#include "configuration/json/Json.hpp"
#include "configuration/service/Messages.hpp"

#include <connector/configuration/ConfigurationImpl.hpp>
#include <connector/configuration/json/ConfigurationJsonSerialization.hpp>
#include <connector/configuration/service/ConfigurationServiceProviderImpl.hpp>
#include <connector/json/JsonSerializerImpl.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace connector::configuration;
using Object = Poco::JSON::Object::Ptr;
using test::MessagePtr;
using test::parse;
using test::print;
using testing::UnorderedElementsAre;

struct Line {
    int number;
    std::string text;
};

/// @return the lines of the page between "## " + `heading` and the next heading of its level
std::vector<Line> section(const std::string& heading) {
    std::ifstream page(TEST_DOCUMENT);
    std::vector<Line> lines;
    bool isInside = false;
    int number = 0;
    for (std::string text; std::getline(page, text);) {
        ++number;
        if (text.compare(0, 3, "## ") == 0)
            isInside = text == "## " + heading;
        else if (isInside)
            lines.push_back({number, text});
    }
    return lines;
}

/// @return the blocks of JSON in a section, each with the line on which it begins
std::vector<Line> jsonBlocks(const std::string& heading) {
    std::vector<Line> blocks;
    bool isInside = false;
    for (const Line& line : section(heading)) {
        if (line.text == "```json")
            blocks.push_back({line.number, ""});
        if (isInside && line.text.compare(0, 3, "```") != 0)
            blocks.back().text += line.text + "\n";
        isInside = line.text == "```json" || (isInside && line.text != "```");
    }
    return blocks;
}

/// @return the texts between backticks in a line
std::vector<std::string> quoted(const std::string& line) {
    std::vector<std::string> texts;
    for (std::size_t begin = line.find('`'); begin != std::string::npos;) {
        const std::size_t end = line.find('`', begin + 1);
        if (end == std::string::npos)
            break;
        texts.push_back(line.substr(begin + 1, end - begin - 1));
        begin = line.find('`', end + 1);
    }
    return texts;
}

class MessagesDocument : public testing::Test {
protected:
    std::string readAndWrite(const std::string& json) {
        return print(serializer->serialize(serializer->deserialize(parse(json))));
    }

    std::string envelope(const std::string& type, const std::string& message) {
        return print(parse("{\"type\":\"connector/configuration/" + type +
                           "\",\"message\":" + message + "}"));
    }

    const std::shared_ptr<connector::json::JsonSerializerImpl> serializer =
        std::make_shared<connector::json::JsonSerializerImpl>();
    const ConfigurationJsonSerialization serialization{serializer};
};

TEST_F(MessagesDocument, ShowsMessagesAsTheyAreWritten) {
    for (const Line& block : jsonBlocks("The messages")) {
        SCOPED_TRACE(block.number);
        EXPECT_EQ(print(parse(block.text)), readAndWrite(block.text));
    }
}

TEST_F(MessagesDocument, ShowsEveryMessage) {
    std::set<std::string> types;
    for (const Line& block : jsonBlocks("The messages"))
        types.insert(parse(block.text)->getValue<std::string>("type"));
    EXPECT_THAT(types, UnorderedElementsAre("connector/Message",
                                            "connector/configuration/ConfigurationGet",
                                            "connector/configuration/ConfigurationSet",
                                            "connector/configuration/ConfigurationKeys",
                                            "connector/configuration/AddPropertyFileSource",
                                            "connector/configuration/ConfigurationOptionResponse",
                                            "connector/configuration/ConfigurationKeysResponse"));
}

/// Sends the requests of the page, in order, to a service that has the options of the page.
TEST_F(MessagesDocument, ShowsTheReplyToEachRequest) {
    const auto configuration = std::make_shared<ConfigurationImpl>();
    configuration->addInMemorySource("site", "net", 100, true, {{"port", 8080}}).get();
    configuration->addInMemorySource("user", "", 50, false, {{"net.host", std::string("::1")}})
        .get();
    const auto service = std::make_shared<ConfigurationServiceProviderImpl>(configuration);
    service->start();
    std::vector<std::string> expected;
    std::vector<std::string> replies;
    for (const Line& block : jsonBlocks("A conversation")) {
        MessagePtr message = serializer->deserialize(parse(block.text));
        if (dynamic_cast<connector::ServiceMessage<ConfigurationServiceProvider>*>(message.get()))
            replies.push_back(
                print(serializer->serialize(test::dispatch(*service, message).get())));
        else
            expected.push_back(print(parse(block.text)));
    }
    EXPECT_EQ(expected, replies);
    EXPECT_EQ(6u, replies.size());
}

/// A row is | `Class` | `input` | `message that is read` | why |.
TEST_F(MessagesDocument, ShowsWhatIsRead) {
    int rows = 0;
    for (const Line& line : section("What is read")) {
        const std::vector<std::string> cells = quoted(line.text);
        if (line.text.compare(0, 3, "| `") != 0 || cells.size() < 3)
            continue;
        SCOPED_TRACE(line.number);
        EXPECT_EQ(envelope(cells[0], cells[2]), readAndWrite(envelope(cells[0], cells[1])));
        ++rows;
    }
    EXPECT_LE(20, rows);
}

/// A row is | `envelope` | `text of the failure` |.
TEST_F(MessagesDocument, ShowsHowAnEnvelopeFails) {
    int rows = 0;
    for (const Line& line : section("What is refused")) {
        const std::vector<std::string> cells = quoted(line.text);
        if (line.text.compare(0, 3, "| `") != 0 || cells.size() != 2)
            continue;
        SCOPED_TRACE(line.number);
        try {
            readAndWrite(cells[0]);
            ADD_FAILURE() << "expected a failure";
        } catch (const std::invalid_argument& failure) {
            EXPECT_EQ(cells[1], failure.what());
        }
        ++rows;
    }
    EXPECT_LE(4, rows);
}

} // namespace
