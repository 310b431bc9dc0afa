/// How parseStream uses its stream.

#include "configuration/properties/parsing/Observation.hpp"
#include "support/Expect.hpp"

#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace test {

namespace {

using Texts = std::map<std::string, std::string>;

constexpr std::ios_base::iostate endState = std::ios_base::eofbit | std::ios_base::failbit;

Texts parse(const std::string& text) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream(text);
    source->parseStream(stream);
    return optionsOf(*source);
}

std::string remainderOf(std::istream& stream) {
    stream.clear();
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

} // namespace

TEST(ParseStream, AddsToTheTable) {
    const auto source = makeEmptyPropertyFileSource();
    for (const char* text : {"a=b\nc=d\n", "c=x\ne=f"}) {
        std::istringstream stream(text);
        source->parseStream(stream);
    }
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "x"}, {"e", "f"}}), optionsOf(*source));
}

TEST(ParseStream, DropsAnUnfinishedPropertyBeforeTheNextStream) {
    const auto source = makeEmptyPropertyFileSource();
    for (const char* text : {"lost=", "a=b\\", "c=d\n"}) {
        std::istringstream stream(text);
        source->parseStream(stream);
    }
    EXPECT_EQ((Texts{{"c", "d"}}), optionsOf(*source));
}

TEST(ParseStream, StartsAtThePositionOfTheStream) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("skipped a=b\n");
    stream.ignore(8);
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
}

TEST(ParseStream, SetsTheEofAndFailBitsAtTheEnd) {
    for (const char* text : {"", "a=b", "a=b\n", "# c", "\n", "a=\\u00"}) {
        SCOPED_TRACE(text);
        const auto source = makeEmptyPropertyFileSource();
        std::istringstream stream(text);
        source->parseStream(stream);
        EXPECT_EQ(endState, stream.rdstate());
    }
}

TEST(ParseStream, SetsTheBadAndFailBitsAfterAReadError) {
    ParseInput input;
    input.text = "a=b\nc=d";
    input.end = InputEnd::throwing;
    const Observation seen = observeLibrary(input);
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}}), seen.options);
    EXPECT_EQ((std::vector<std::string>{"Parsed property: a = b", "Parsed final property: c = d"}),
              seen.logLines());
    EXPECT_EQ(std::ios_base::badbit | std::ios_base::failbit, seen.state);
}

TEST(ParseStream, ReadsNothingFromAStreamThatIsNotGood) {
    for (const auto state :
         {std::ios_base::eofbit, std::ios_base::failbit, std::ios_base::badbit}) {
        const auto source = makeEmptyPropertyFileSource();
        std::istringstream stream("a=b\n");
        stream.setstate(state);
        source->parseStream(stream);
        EXPECT_EQ(Texts(), optionsOf(*source));
        EXPECT_EQ(state | std::ios_base::failbit, stream.rdstate());
        EXPECT_EQ("a=b\n", remainderOf(stream));
    }
}

TEST(ParseStream, ReadsNothingFromAStreamWithoutABuffer) {
    const auto source = makeEmptyPropertyFileSource();
    std::istream stream(nullptr);
    source->parseStream(stream);
    EXPECT_EQ(Texts(), optionsOf(*source));
    EXPECT_EQ(std::ios_base::badbit | std::ios_base::failbit, stream.rdstate());
}

TEST(ParseStream, ReadsBlanksEvenIfTheStreamSkipsWhiteSpace) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream(" a\nb = c d \n");
    stream.setf(std::ios_base::skipws);
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"", "a"}, {"b", "c d "}}), optionsOf(*source));
}

TEST(ParseStream, CallsTheWatcherWithTheStreamPositionedAfterTheLineBreak) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nlonger = c\nd=e");
    std::vector<std::streamoff> positions;
    source->setWatcher([&](const std::string&) { positions.push_back(stream.tellg()); });
    source->parseStream(stream);
    EXPECT_EQ((std::vector<std::streamoff>{4, 15, -1}), positions); // -1: the stream has ended
}

TEST(ParseStream, ContinuesWhereTheWatcherLeftTheStream) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nskipped\nc=d\n");
    source->setWatcher([&](const std::string& key) {
        if (key == "a")
            stream.ignore(8);
    });
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}}), optionsOf(*source));
}

TEST(ParseStream, ContinuesInABufferThatTheWatcherInstalled) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nnot=read\n");
    std::stringbuf other("c=d\n");
    source->setWatcher([&](const std::string& key) {
        if (key == "a")
            stream.std::istream::rdbuf(&other);
    });
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}}), optionsOf(*source));
}

TEST(ParseStream, StopsWhenTheWatcherMakesTheStreamFail) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nc=d\n");
    source->setWatcher([&](const std::string&) { stream.setstate(std::ios_base::failbit); });
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
    EXPECT_EQ("c=d\n", remainderOf(stream));
}

TEST(ParseStream, LeavesTheRestOfTheStreamWhenTheWatcherThrows) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nc=d\ne=f\n");
    source->setWatcher([](const std::string& key) {
        if (key == "c")
            throw std::domain_error("the watcher failed");
    });
    expectThrows<std::domain_error>("the watcher failed", [&] { source->parseStream(stream); });
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}}), optionsOf(*source));
    EXPECT_TRUE(stream.good());
    EXPECT_EQ("e=f\n", remainderOf(stream));
}

TEST(ParseStream, CanContinueAfterTheWatcherThrew) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nc=d\n");
    source->setWatcher([](const std::string& key) {
        if (key == "a")
            throw std::domain_error("the watcher failed");
    });
    EXPECT_THROW(source->parseStream(stream), std::domain_error);
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}}), optionsOf(*source));
}

TEST(ParseStream, MayBeCalledByTheWatcher) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nc=d\ne=f");
    std::vector<std::string> watched;
    source->setWatcher([&](const std::string& key) {
        watched.push_back(key);
        if (key == "a")
            source->parseStream(stream);
    });
    source->parseStream(stream);
    EXPECT_EQ((Texts{{"a", "b"}, {"c", "d"}, {"e", "f"}}), optionsOf(*source));
    EXPECT_EQ((std::vector<std::string>{"a", "c", "e"}), watched);
}

TEST(ParseStream, LosesTheLastLineOfAStreamThatThrowsAtItsEnd) {
    const auto source = makeEmptyPropertyFileSource();
    std::istringstream stream("a=b\nc=d");
    stream.exceptions(std::ios_base::badbit | std::ios_base::failbit | std::ios_base::eofbit);
    EXPECT_THROW(source->parseStream(stream), std::ios_base::failure);
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
    EXPECT_EQ(endState, stream.rdstate());
}

TEST(ParseStream, ThrowsTheReadErrorOfAStreamThatThrowsForItsBadBit) {
    const auto source = makeEmptyPropertyFileSource();
    const auto buffer = makeSupplyBuffer(Supply::pieces, "a=b\nc=d", 3, InputEnd::throwing);
    std::istream stream(buffer.get());
    stream.exceptions(std::ios_base::badbit);
    expectThrows<std::runtime_error>("read error", [&] { source->parseStream(stream); });
    EXPECT_EQ((Texts{{"a", "b"}}), optionsOf(*source));
}

TEST(ParseStream, ReadsKeysAndValuesOfAnyLength) {
    for (const std::size_t length : {65535u, 65536u, 65537u, 1000000u}) {
        const std::string key(length, 'k');
        const std::string value(length, 'v');
        EXPECT_EQ((Texts{{key, value}, {"a", "b"}}), parse(key + "=" + value + "\na=b\n"));
    }
}

TEST(ParseStream, ReadsCommentsAndContinuationsOfAnyLength) {
    std::string text = "#" + std::string(100000, 'c') + "\na=";
    for (int i = 0; i < 100000; ++i)
        text += "x\\\n   ";
    EXPECT_EQ((Texts{{"a", std::string(100000, 'x') + "y"}}), parse(text + "y\n"));
}

TEST(ParseStream, ReadsRunsOfLineBreaksAndBlanksOfAnyLength) {
    EXPECT_EQ((Texts{{"a", "b"}}),
              parse(std::string(100000, '\n') + "a" + std::string(100000, ' ') + "b\n"));
}

TEST(ParseStream, KeepsEveryOrdinaryByte) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte) {
        if (std::string("\r\n\\").find(static_cast<char>(byte)) == std::string::npos)
            bytes += static_cast<char>(byte);
    }
    EXPECT_EQ((Texts{{"a", bytes}}), parse("a=" + bytes + "\n"));
}

} // namespace test
