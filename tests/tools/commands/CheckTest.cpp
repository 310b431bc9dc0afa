/// connector-config check
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryDirectory;
using test::usageError;

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// @return what is written for a finding of "a==b" in line 1
std::string finding(const std::string& file) {
    return file + ":1:3: warning: the second separator is dropped: the library reads \"a\" = "
                  "\"b\", java.util.Properties reads \"a\" = \"=b\"; write a=b for both to read "
                  "the former, or a=\\=b for both to read the latter [second-separator]\n";
}

/// @return the places and the rules of what check writes
std::string places(const Result& result, const std::string& file) {
    std::string text;
    std::size_t start = 0;
    for (std::size_t end; (end = result.output.find('\n', start)) != std::string::npos;
         start = end + 1) {
        const std::string line = result.output.substr(start, end - start);
        EXPECT_EQ(0u, line.find(file + ':')) << line;
        const std::string place = line.substr(file.size() + 1);
        text += place.substr(0, place.find(": ")) + ' ' + line.substr(line.rfind('[')) + ' ';
    }
    return text;
}

class Check : public testing::Test {
protected:
    std::string file(const std::string& name, const std::string& content) const {
        return directory.write(name, content);
    }

    const TemporaryDirectory directory;
};

TEST_F(Check, WritesNothingForAFileThatIsReadAlike) {
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"check", file("a.properties", "a=b\n")}));
}

TEST_F(Check, WritesFindingsInTheFormOfCompilers) {
    const std::string path = file("a.properties", "a==b\n");
    EXPECT_EQ((Result{1, finding(path), ""}), runConnectorConfig({"check", path}));
}

TEST_F(Check, ReadsStandardInput) {
    EXPECT_EQ((Result{1, finding("-"), ""}), runConnectorConfig({"check", "-"}, "a==b\n"));
}

TEST_F(Check, TheOrderIsThatOfTheArguments) {
    const std::string first = file("z", "a==b\n"), second = file("a", "a==b\n");
    EXPECT_EQ((Result{1, finding(first) + finding(second), ""}),
              runConnectorConfig({"check", first, second}));
}

TEST_F(Check, EscapesNamesAndTexts) {
    const std::string path = file("a\n\x1b", "\x1b==b\n");
    const Result result = runConnectorConfig({"check", path});
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.output.find("a\\n\\x1b:1:3: warning"));
    EXPECT_EQ(std::string::npos, result.output.find('\x1b'));
    EXPECT_EQ(result.output.size() - 1, result.output.find('\n'));
}

TEST_F(Check, AFileThatCannotBeReadIsReportedAndTheOthersAreChecked) {
    const std::string path = file("a", "a==b\n");
    const std::string missing = directory.path / "missing";
    EXPECT_EQ((Result{2, finding(path),
                      "connector-config: File could not be read: " + missing +
                          ": No such file or directory\n"}),
              runConnectorConfig({"check", missing, path}));
    EXPECT_EQ((Result{2, "",
                      "connector-config: File could not be read: " + directory.path.string() +
                          ": Is a directory\n"}),
              runConnectorConfig({"check", directory.path}));
}

TEST_F(Check, InvalidArgumentsAreUsageErrors) {
    const struct {
        int line;
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {"check"}, "FILE is required"},
        {__LINE__, {"check", "a", "--disable", "nonsense"}, "Unknown rule: nonsense"},
        {__LINE__, {"check", "a", "--json", "--sarif"}, "--json excludes --sarif"},
        {__LINE__, {"check", "a", "--fix", "--diff"}, "--fix excludes --diff"},
        {__LINE__, {"check", "a", "--diff", "--json"}, "--diff excludes --json"},
        {__LINE__, {"check", "a", "--diff", "--sarif"}, "--diff excludes --sarif"},
        {__LINE__, {"check", "-", "--fix"}, "--fix cannot rewrite standard input"},
        {__LINE__, {"check", "-", "-"}, "Standard input can be read only once"},
        {__LINE__, {"check", "-", "--schema", "-"}, "Standard input can be read only once"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(row.arguments));
    }
}

TEST_F(Check, ExcludesSourcesAndServices) {
    const struct {
        int line;
        std::vector<std::string> arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {"-f", "b"}, "check excludes --file"},
        {__LINE__, {"--env", "B_"}, "check excludes --env"},
        {__LINE__, {"-s", "b=1"}, "check excludes --set"},
        {__LINE__, {"-d", "b=1"}, "check excludes --default"},
        {__LINE__, {"--snapshot", "b"}, "check excludes --snapshot"},
        {__LINE__, {"--url", "unix:b"}, "--url excludes check"},
        {__LINE__, {"--token-file", "b"}, "--token-file requires --url"},
    };
    const std::string path = file("a", "a=1\n");
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        std::vector<std::string> before = row.arguments;
        before.insert(before.end(), {"check", path});
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(before));
        std::vector<std::string> after{"check", path};
        after.insert(after.end(), row.arguments.begin(), row.arguments.end());
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(after));
    }
}

TEST_F(Check, TakesTheOptionsForAllCommands) {
    const std::string path = file("a", "a=1\n");
    EXPECT_EQ((Result{0,
                      R"({"files":[{"file":")" + path +
                          R"(","findings":[]}]})"
                          "\n",
                      ""}),
              runConnectorConfig({"--json", "--trace", "--secret", "b", "check", path}));
}

TEST_F(Check, ADisabledRuleIsNotReported) {
    const std::string path = file("a", "a==b\nb=\\t\n");
    EXPECT_EQ("1:3 [second-separator] 2:3 [escape] ",
              places(runConnectorConfig({"check", path}), path));
    EXPECT_EQ("1:3 [second-separator] ",
              places(runConnectorConfig({"check", path, "--disable", "escape"}), path));
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"check", path, "--disable", "escape",
                                                       "--disable", "second-separator"}));
}

TEST_F(Check, SecretsAreNotShown) {
    const std::string path = file("a", "db.password==s3cret\nhidden.key==s3cret\n");
    const std::string output = runConnectorConfig({"check", path, "--secret", "hidden*"}).output;
    EXPECT_EQ(std::string::npos, output.find("s3cret"));
    EXPECT_NE(std::string::npos, output.find("******"));
    EXPECT_NE(std::string::npos, runConnectorConfig({"check", path}).output.find("s3cret"));
}

TEST_F(Check, AValueInTheLibraryIsTheOneThatGetShows) {
    const std::string path = file("a", "a==b\nc=\\t\n");
    EXPECT_EQ("b\n", runConnectorConfig({"-f", path, "get", "a"}).output);
    runConnectorConfig({"check", "--fix", path});
    EXPECT_EQ("b\n", runConnectorConfig({"-f", path, "get", "a"}).output);
    EXPECT_EQ("t\n", runConnectorConfig({"-f", path, "get", "c"}).output);
}

using CheckJson = Check;

TEST_F(CheckJson, HasEveryFileInOrder) {
    const std::string first = file("b", "a=b\n"), second = file("a", "a=\"b\"\n");
    EXPECT_EQ((Result{1,
                      R"({"files":[{"file":")" + first + R"(","findings":[]},{"file":")" + second +
                          R"(","findings":[{"line":1,"column":3,"rule":"suspicious",)"
                          R"("text":"the quotation marks belong to the value \"b\""}]}]})"
                          "\n",
                      ""}),
              runConnectorConfig({"check", "--json", first, second}));
}

TEST_F(CheckJson, AFileThatCannotBeReadHasAnError) {
    const std::string missing = directory.path / "missing";
    const std::string error = "File could not be read: " + missing + ": No such file or directory";
    EXPECT_EQ((Result{2,
                      R"({"files":[{"file":")" + missing + R"(","findings":[],"error":")" + error +
                          "\"}]}\n",
                      "connector-config: " + error + "\n"}),
              runConnectorConfig({"check", "--json", missing}));
}

using CheckDiff = Check;

TEST_F(CheckDiff, ShowsWhatFixWouldChangeAndChangesNothing) {
    const std::string path = file("a", "x=y\na==b\n");
    EXPECT_EQ(
        (Result{1, "--- " + path + "\n+++ " + path + "\n@@ -1,2 +1,2 @@\n x=y\n-a==b\n+a=b\n", ""}),
        runConnectorConfig({"check", "--diff", path}));
    EXPECT_EQ("x=y\na==b\n", contentOf(path));
}

TEST_F(CheckDiff, IsEmptyIfNothingWouldChange) {
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"check", "--diff", file("a", "a=b\n")}));
    EXPECT_EQ((Result{1, "", ""}), runConnectorConfig({"check", "--diff", file("b", "a='b'\n")}));
}

TEST_F(CheckDiff, WorksOnStandardInput) {
    EXPECT_EQ((Result{1, "--- -\n+++ -\n@@ -1,1 +1,1 @@\n-a==b\n+a=b\n", ""}),
              runConnectorConfig({"check", "--diff", "-"}, "a==b\n"));
}

using CheckFix = Check;

TEST_F(CheckFix, RewritesTheFile) {
    const std::string path = file("a", "# c\n\na==b\nc = d\n");
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"check", "--fix", path}));
    EXPECT_EQ("# c\n\na=b\nc = d\n", contentOf(path));
}

TEST_F(CheckFix, ReportsWhatItCannotChange) {
    const std::string path = file("a", "a==b\nb=\\ud83d\nc='d'\na=\xff\n");
    EXPECT_EQ("2:3 [unicode-escape] 3:3 [suspicious] 4:1 [duplicate-key] 4:3 [not-utf8] ",
              places(runConnectorConfig({"check", "--fix", path}), path));
    EXPECT_EQ(1, runConnectorConfig({"check", "--fix", path}).status);
}

TEST_F(CheckFix, LeavesLinesOfDisabledRules) {
    const std::string path = file("a", "a==b\nb=\\t\n");
    EXPECT_EQ(0, runConnectorConfig({"check", "--fix", "--disable", "escape", path}).status);
    EXPECT_EQ("a=b\nb=\\t\n", contentOf(path));
}

TEST_F(CheckFix, KeepsTheMode) {
    const std::string path = file("a", "a==b\n");
    ASSERT_EQ(0, ::chmod(path.c_str(), 0640));
    EXPECT_EQ(0, runConnectorConfig({"check", "--fix", path}).status);
    struct stat status {};
    ASSERT_EQ(0, ::stat(path.c_str(), &status));
    EXPECT_EQ(0640u, status.st_mode & 07777);
}

TEST_F(CheckFix, KeepsTheOwner) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "Only root can give a file away";
    const std::string path = file("a", "a==b\n");
    ASSERT_EQ(0, ::chown(path.c_str(), 12345, 54321));
    ASSERT_EQ(0, ::chmod(path.c_str(), 04640));
    EXPECT_EQ(0, runConnectorConfig({"check", "--fix", path}).status);
    struct stat status {};
    ASSERT_EQ(0, ::stat(path.c_str(), &status));
    EXPECT_EQ(12345u, status.st_uid);
    EXPECT_EQ(54321u, status.st_gid);
    EXPECT_EQ(04640u, status.st_mode & 07777);
}

TEST_F(CheckFix, FollowsLinks) {
    std::filesystem::create_directory(directory.path / "real");
    const std::string path = file("real/a", "a==b\n");
    std::filesystem::create_symlink("real/a", directory.path / "link");
    const std::string link = directory.path / "link";
    EXPECT_EQ(0, runConnectorConfig({"check", "--fix", link}).status);
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ("a=b\n", contentOf(path));
}

TEST_F(CheckFix, ReplacesTheFileAndLeavesNothingBeside) {
    const std::string path = file("a", "a==b\n");
    struct stat before {};
    ASSERT_EQ(0, ::stat(path.c_str(), &before));
    const std::ifstream open(path); // keeps the inode in use
    EXPECT_EQ(0, runConnectorConfig({"check", "--fix", path}).status);
    struct stat after {};
    ASSERT_EQ(0, ::stat(path.c_str(), &after));
    EXPECT_NE(before.st_ino, after.st_ino);
    const std::filesystem::directory_iterator files(directory.path);
    EXPECT_EQ(1, std::distance(begin(files), end(files)));
}

TEST_F(CheckFix, DoesNotTouchAFileThatIsReadAlike) {
    const std::string path = file("a", "a=b\n");
    struct stat before {};
    ASSERT_EQ(0, ::stat(path.c_str(), &before));
    EXPECT_EQ(0, runConnectorConfig({"check", "--fix", path}).status);
    struct stat after {};
    ASSERT_EQ(0, ::stat(path.c_str(), &after));
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
}

TEST_F(CheckFix, AFileThatCannotBeReplacedStays) {
    const std::string fifo = directory.path / "fifo";
    ASSERT_EQ(0, ::mkfifo(fifo.c_str(), 0600));
    test::Process program(test::connectorConfig({"check", "--fix", fifo}));
    std::ofstream(fifo) << "a==b\n";
    const Result result = program.finish();
    EXPECT_EQ(
        (Result{2, "",
                "connector-config: File could not be written: " + fifo + ": not a regular file\n"}),
        result);
}

using CheckSchema = Check;

const char schema[] = R"({"$schema":"https://json-schema.org/draft/2020-12/schema","type":"object",
"properties":{
 "net.port":{"type":"integer","minimum":1,"maximum":65535},
 "net.name":{"type":"string","minLength":1},
 "net.password":{"type":"string","pattern":"^[a-z]+$"}},
"required":["net.name"],"additionalProperties":false})";

TEST_F(CheckSchema, ReportsKeysAndValuesAtTheirPlaces) {
    const std::string path =
        file("a", "net.port=8080\nnet.name=x\nnet.prot=1\n  \nnet.port=70000\n");
    EXPECT_EQ((Result{1,
                      path +
                          ":3:1: warning: net.prot is unknown, did you mean net.port? "
                          "[unknown-option]\n" +
                          path +
                          ":5:1: warning: the key \"net.port\" is also given on line 1; the value "
                          "on line 5 replaces that one [duplicate-key]\n" +
                          path +
                          ":5:1: warning: net.port must be between 1 and 65535: \"70000\" "
                          "[invalid-value]\n",
                      ""}),
              runConnectorConfig({"check", "--disable", "empty-key", "--schema",
                                  file("schema.json", schema),
                                  file("a", "net.port=8080\nnet.name=x\nnet.prot=1\n\n"
                                            "net.port=70000\n")}));
}

TEST_F(CheckSchema, ReportsWhatIsMissingAndWhatDoesNotConvert) {
    const std::string path = file("a", "net.port=high\nnet.password=S3CRET\n");
    EXPECT_EQ((Result{1,
                      path +
                          ":1:1: warning: net.port is not convertible to integer: \"high\" "
                          "[invalid-value]\n" +
                          path + ":1:1: warning: net.name is required [missing-option]\n" + path +
                          ":2:1: warning: net.password does not match the pattern of the schema: "
                          "****** [invalid-value]\n",
                      ""}),
              runConnectorConfig({"check", path, "--schema", file("schema.json", schema)}));
}

TEST_F(CheckSchema, EscapesKeys) {
    const std::string schemaFile = file("schema.json", schema);
    const std::string path = file("a", "net.name=x\n\x1bkey=1\n");
    EXPECT_EQ((Result{1, path + ":2:1: warning: \\x1bkey is unknown [unknown-option]\n", ""}),
              runConnectorConfig({"check", path, "--schema", schemaFile}));
}

TEST_F(CheckSchema, ChecksTheOtherFormats) {
    const std::string schemaFile = file("schema.json", schema);
    for (const auto& [name, content] :
         {std::pair<const char*, const char*>{"a.json", R"({"net":{"port":0,"name":"x"}})"},
          {"a.yaml", "net:\n  port: 0\n  name: x\n"},
          {"a.YML", "net: {port: 0, name: x}\n"},
          {"a.toml", "[net]\nport = 0\nname = 'x'\n"}}) {
        SCOPED_TRACE(name);
        const std::string path = file(name, content);
        EXPECT_EQ((Result{1,
                          path + ":1:1: warning: net.port must be between 1 and 65535: 0 "
                                 "[invalid-value]\n",
                          ""}),
                  runConnectorConfig({"check", path, "--schema", schemaFile}));
        EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"check", path}));
    }
}

TEST_F(CheckSchema, ASyntaxErrorOfTheOtherFormatsIsAFinding) {
    const std::string path = file("a.json", "{\n \"a\": }\n");
    const Result result = runConnectorConfig({"check", path});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(0u, result.output.find(path + ":2:7: warning: ")) << result.output;
    EXPECT_NE(std::string::npos, result.output.find(" [syntax]\n"));
}

TEST_F(CheckSchema, ASchemaThatCannotBeUsedIsAnError) {
    const struct {
        int line;
        const char* schema;
        const char* error;
    } rows[] = {
        {__LINE__, "[]", "it is not a JSON object"},
        {__LINE__, "{}", "it has no \"properties\""},
        {__LINE__, R"({"properties":{"a":1}})", "the option a is no object"},
        {__LINE__, R"({"properties":{},"required":[1]})",
         "\"required\" has an element that is no string"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(
            (Result{2, "",
                    std::string("connector-config: Schema cannot be used: ") + row.error + "\n"}),
            runConnectorConfig(
                {"check", file("a", ""), "--schema", file("schema.json", row.schema)}));
    }
    for (const char* broken : {"{", "{\"properties\":{\"a\":{\"pattern\":\"(\"}}}", "\xff"}) {
        const Result result =
            runConnectorConfig({"check", file("a", ""), "--schema", file("schema.json", broken)});
        EXPECT_EQ(2, result.status);
        EXPECT_EQ(0u, result.errors.find("connector-config: Schema cannot be used: "))
            << result.errors;
    }
}

} // namespace
