/// --file with files of all formats, and with files that are missing.
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Result;
using test::runConnectorConfig;

class FileFormats : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& content) const {
        return directory.write(name, content).string();
    }

    const test::TemporaryDirectory directory;
};

TEST_F(FileFormats, TheExtensionNamesTheFormat) {
    const struct {
        int line;
        const char* name;
        const char* content;
        const char* type;
    } rows[] = {
        {__LINE__, "a.properties", "net.port=80\n", "string"},
        {__LINE__, "a.json", R"({"net": {"port": 80}})", "int"},
        {__LINE__, "a.yaml", "net: {port: 80}", "int"},
        {__LINE__, "a.yml", "net:\n  port: 80", "int"},
        {__LINE__, "a.toml", "[net]\nport = 80", "int"},
        {__LINE__, "a.conf", "net.port=80\n", "string"},
        {__LINE__, "a", "net.port=80\n", "string"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const std::string value = *row.type == 'i' ? "80" : "\"80\"";
        EXPECT_EQ((Result{0,
                          R"([{"key":"net.port","source":"f","value":{"type":")" +
                              std::string(row.type) + R"(","value":)" + value + "}}]\n",
                          ""}),
                  runConnectorConfig({"-f", "path=" + write(row.name, row.content) + ",name=f",
                                      "--json", "show"}));
    }
}

TEST_F(FileFormats, TheMemberFormatWinsOverTheExtension) {
    const std::string path = "path=" + write("a.json", "a = 1");
    EXPECT_EQ((Result{0, "1\n", ""}),
              runConnectorConfig({"-f", path + ",format=toml", "get", "a"}));
    EXPECT_EQ((Result{0, "1\n", ""}),
              runConnectorConfig({"-f", path + ",format=properties", "get", "a"}));
}

TEST_F(FileFormats, AFileThatCannotBeParsedIsAFailureWithItsPlace) {
    const std::string path = write("a.yaml", "a: 1\na: 2\n");
    EXPECT_EQ(
        (Result{1, "", "connector-config: " + path + ":2:1: The key stands here a second time\n"}),
        runConnectorConfig({"-f", path, "keys"}));
}

TEST_F(FileFormats, AMissingFileOfAnotherFormatThanPropertiesIsAFailure) {
    const std::string path = (directory.path / "a.json").string();
    EXPECT_EQ((Result{1, "",
                      "connector-config: " + path +
                          ": The file could not be read: No such file or directory\n"}),
              runConnectorConfig({"-f", path, "keys"}));
}

TEST_F(FileFormats, AnOptionalFileMayBeMissing) {
    for (const char* name : {"a.json", "a.properties", "no/such/directory/a.toml"})
        EXPECT_EQ(
            (Result{0, "", ""}),
            runConnectorConfig(
                {"-f", "path=" + (directory.path / name).string() + ",optional=true", "keys"}));
}

TEST_F(FileFormats, AnOptionalFileIsReadIfItExists) {
    const std::string path = "path=" + write("a.json", R"({"a": 1})") + ",optional=true";
    EXPECT_EQ((Result{0, "a\n", ""}), runConnectorConfig({"-f", path, "keys"}));
    write("a.json", "{");
    EXPECT_EQ(1, runConnectorConfig({"-f", path, "keys"}).status);
}

TEST_F(FileFormats, AnOptionalFileThatCannotBeReadIsAFailure) {
    const std::string path = directory.path.string(); // a directory
    EXPECT_EQ(
        (Result{1, "", "connector-config: Property file could not be opened: " + path + "\n"}),
        runConnectorConfig({"-f", "path=" + path + ",optional=true", "keys"}));
}

TEST_F(FileFormats, TheAddLineTakesThemToo) {
    const std::string path = write("a.txt", R"({"a": 1})");
    const std::string missing = (directory.path / "b.yaml").string();
    EXPECT_EQ((Result{0, "a = 1  (f)\n", "connector-config: No value yet: a\n"}),
              runConnectorConfig({"watch", "a"}, "add path=" + missing +
                                                     ",optional=true\n"
                                                     "add path=" +
                                                     path + ",format=json,name=f\n"));
}

} // namespace
