/// Loading a file in the constructor, which reads in larger steps than parseStream.

#include "configuration/properties/parsing/Observation.hpp"
#include "configuration/properties/parsing/ReferenceParser.hpp"
#include "support/LogCapture.hpp"
#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/sources/PropertyFileSource.hpp>
#include <foundation/log/basic_diagnostic_logger.hpp>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <random>
#include <sstream>
#include <thread>

namespace test {

namespace {

using connector::configuration::PropertyFileSource;

namespace fs = std::filesystem;

using Texts = std::map<std::string, std::string>;

constexpr const char* loggerName = "connector::configuration::property_file";

Texts load(const fs::path& path) {
    PropertyFileSource source(path.u16string());
    return optionsOf(source);
}

Texts readByReference(const std::string& text) {
    const auto ignore = [](const std::string&) {};
    Texts options;
    std::istringstream stream(text);
    parseByReference(stream, options, {ignore, ignore});
    return options;
}

std::string line(const std::string& key, int value) {
    return key + "=" + std::to_string(value) + "\n";
}

std::string linesOfDifferentKeys(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += line("key" + std::to_string(i), i);
    return text;
}

/// A named pipe and its end for writing.
class Pipe {
public:
    explicit Pipe(const fs::path& newPath) : path(newPath) {
        if (mkfifo(path.c_str(), 0600) != 0)
            throw std::runtime_error("cannot create a pipe");
    }
    /// Waits for a reader.
    void open() { end = ::open(path.c_str(), O_WRONLY); }
    void close() { ::close(end); }
    void write(const std::string& text) {
        if (::write(end, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            throw std::runtime_error("cannot write to the pipe");
    }
    void waitUntilEmpty() {
        for (int waiting = 1; waiting > 0; std::this_thread::yield())
            ioctl(end, FIONREAD, &waiting);
    }

    const fs::path path;

private:
    int end = -1;
};

/// Loads what `write` writes into a pipe, whose size is not known in advance.
template <typename Write>
Texts loadFromPipe(const TemporaryDirectory& directory, Write write) {
    Pipe pipe(directory.path / "pipe");
    std::thread writer([&] {
        pipe.open();
        write(pipe);
        pipe.close();
    });
    const Texts options = load(pipe.path);
    writer.join();
    return options;
}

} // namespace

class PropertyFileLoad : public testing::Test {
protected:
    Texts loadText(const std::string& text) { return load(directory.write("file", text)); }

    void expectSameAsReference(const std::string& text) {
        EXPECT_EQ(readByReference(text), loadText(text));
    }

    const TemporaryDirectory directory;
};

TEST_F(PropertyFileLoad, FilesOfAnyNumberOfPropertiesAreReadCompletely) {
    for (int count = 0; count <= 70; ++count) {
        const Texts options = loadText(linesOfDifferentKeys(count));
        EXPECT_EQ(static_cast<std::size_t>(count), options.size());
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(std::to_string(i), options.at("key" + std::to_string(i))) << count;
    }
}

TEST_F(PropertyFileLoad, TheLastOccurrenceWinsAtAnyDistance) {
    for (int distance = 1; distance <= 70; ++distance) {
        const std::string between = linesOfDifferentKeys(distance - 1);
        for (const char* before : {"", "x=y\n"}) {
            const std::string text =
                before + line("twice", 1) + between + line("twice", 2) + "last=z\n";
            EXPECT_EQ("2", loadText(text).at("twice")) << distance;
        }
    }
}

TEST_F(PropertyFileLoad, TheLastOfManyOccurrencesWins) {
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += line("same", i);
    EXPECT_EQ((Texts{{"same", "999"}}), loadText(text));
}

TEST_F(PropertyFileLoad, AnUnfinishedLastLineIsKeptOrLostAfterAnyNumberOfProperties) {
    for (const int count : {15, 16, 17, 31, 32, 33}) {
        for (const char* last : {"a=b", "a=", "a", "a =", "a=b\\", " b", "a=\\u41"})
            expectSameAsReference(linesOfDifferentKeys(count) + last);
    }
}

TEST_F(PropertyFileLoad, PositionsOfBufferBoundariesMakeNoDifference) {
    const std::string sample = "# c\r\nk\\u00e9y\\=s : v\\u20acl\\\r\n   ue \\\n\n  x\r\r\n"
                               "a=b\r\nc = d\n e\n! f\ng\nh\ti\\\\\n";
    for (const std::size_t cut : {4096u, 8191u, 8192u, 65536u}) {
        for (std::size_t offset = 0; offset <= sample.size(); ++offset) {
            const std::string padding = "pad=" + std::string(cut - offset - 5, 'p') + "\n";
            expectSameAsReference(padding + sample + sample + "last=l");
        }
    }
}

TEST_F(PropertyFileLoad, LinesOfAnyLengthAreRead) {
    for (const std::size_t length : {0u, 1u, 15u, 16u, 1021u, 1022u, 1023u, 1024u, 1025u, 70000u}) {
        const std::string run(length, 'x');
        expectSameAsReference("a=" + run + "\n" + run + "=b\n" + run + "\r\nc=d" + run + "\r\n" +
                              "e" + std::string(length, ' ') + "=f\n");
    }
}

TEST_F(PropertyFileLoad, RandomFilesAreReadAsByTheReference) {
    const std::string pieces[] = {"a",       "b",
                                  "key",     "=",
                                  ":",       " ",
                                  "\t",      "\n",
                                  "\r",      "\n",
                                  "\r\n",    "a=b",
                                  "c = d",   "\n#",
                                  "\n!",     "\\",
                                  "\\u",     "\\\n",
                                  "=1\n",    " : 2\r\n",
                                  "\\u00e9", std::string(1, '\0'),
                                  "\xC3"};
    std::mt19937 random(1);
    for (int round = 0; round < 500; ++round) {
        std::string text;
        for (std::size_t count = random() % 400; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        SCOPED_TRACE(testing::PrintToString(text));
        expectSameAsReference(text);
        if (HasFailure())
            return; // one failing file is enough
    }
}

TEST_F(PropertyFileLoad, AFileWithAMisleadingBeginningIsRead) {
    const std::string longLine = "long=" + std::string(200000, 'x') + "\n";
    expectSameAsReference(linesOfDifferentKeys(40) + longLine);
    expectSameAsReference(longLine + linesOfDifferentKeys(5000));
    expectSameAsReference("#" + longLine + linesOfDifferentKeys(5000));
}

TEST_F(PropertyFileLoad, APipeIsRead) {
    const std::string text = linesOfDifferentKeys(20000);
    EXPECT_EQ(readByReference(text),
              loadFromPipe(directory, [&](Pipe& pipe) { pipe.write(text); }));
}

TEST_F(PropertyFileLoad, APipeThatSuppliesSingleCharactersIsRead) {
    const std::string text = "a\\u00e9=b\\\r\n c\r\nd = e\r\n";
    EXPECT_EQ((Texts{{"a\xC3\xA9", "bc"}, {"d", "e"}}), loadFromPipe(directory, [&](Pipe& pipe) {
                  for (const char c : text) {
                      pipe.write(std::string(1, c));
                      pipe.waitUntilEmpty();
                  }
              }));
}

TEST_F(PropertyFileLoad, AFileThatIsLongerThanItsReportedSizeIsRead) {
    ASSERT_EQ(0u, fs::file_size("/proc/self/status"));
    EXPECT_EQ(1u, load("/proc/self/status").count("Pid"));
}

TEST_F(PropertyFileLoad, EveryPropertyIsLoggedInTheOrderOfTheFile) {
    const PropertyFileLog log;
    std::vector<std::string> expected;
    for (int i = 0; i < 70; ++i) {
        const std::string number = std::to_string(i % 40);
        expected.push_back("Parsed property: key" + number + " = " + number);
    }
    loadText(linesOfDifferentKeys(40) + linesOfDifferentKeys(30));
    EXPECT_EQ(expected, log.lines());
}

TEST_F(PropertyFileLoad, TheLogMayBeSwitchedOffInTheMiddleOfAFile) {
    int lines = 0;
    const LogCapture log([&](const LogRecord&) {
        if (++lines == 20)
            foundation::log::set_diagnostic_mask(loggerName, 0);
    });
    foundation::log::set_diagnostic_mask(loggerName, 16);
    const std::string text = linesOfDifferentKeys(40) + line("key3", 7);
    expectSameAsReference(text);
    EXPECT_EQ(20, lines);
}

TEST_F(PropertyFileLoad, PropertiesReadAfterTheLogIsSwitchedOnReplaceEarlierOnes) {
    const LogCapture log;
    const Texts options = loadFromPipe(directory, [](Pipe& pipe) {
        pipe.write("a=before\nb=before\n");
        pipe.waitUntilEmpty();
        foundation::log::set_diagnostic_mask(loggerName, 16);
        pipe.write("a=after\n");
    });
    EXPECT_EQ((Texts{{"a", "after"}, {"b", "before"}}), options);
    EXPECT_EQ("Parsed property: a = after", log.lines().back());
}

TEST_F(PropertyFileLoad, TheConstructorThrowsWhatASinkThrows) {
    const LogCapture log([](const LogRecord&) { throw std::domain_error("sink"); });
    foundation::log::set_diagnostic_mask(loggerName, 16);
    EXPECT_THROW(loadText("a=b\n"), std::domain_error);
}

} // namespace test
