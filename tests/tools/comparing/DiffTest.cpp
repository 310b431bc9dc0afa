/// connector-config diff
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

using Arguments = std::vector<std::string>;

class Diff : public testing::Test {
protected:
    std::string file(const std::string& name, const std::string& content) const {
        return directory.write(name, content);
    }

    std::string snapshot(const std::string& name, Arguments arguments) const {
        arguments.emplace_back("snapshot");
        return file(name, runConnectorConfig(arguments).output);
    }

    const test::TemporaryDirectory directory;
};

TEST_F(Diff, ShowsOptionsThatAreAddedRemovedChangedAndMoved) {
    const std::string before = snapshot("a", {"-s", "changed=1", "-s", "moved=1", "-s", "removed=1",
                                              "-s", "same=1", "-s", "type=1"});
    const std::string after = snapshot("b", {"-s", "added=1", "-s", "changed=2", "-d", "moved=1",
                                             "-s", "same=1", "-d", "same=2", "-s", "type:int=1"});
    EXPECT_EQ((Result{1,
                      "   KEY      TYPE    VALUE  SOURCE\n"
                      "+  added    string  1      override\n"
                      "-  changed  string  1      override\n"
                      "+  changed  string  2      override\n"
                      "-  moved    string  1      override\n"
                      "+  moved    string  1      default\n"
                      "-  removed  string  1      override\n"
                      "-  type     string  1      override\n"
                      "+  type     int     1      override\n",
                      ""}),
              runConnectorConfig({"diff", before, after}));
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"diff", before, before}));
}

TEST_F(Diff, WritesADocument) {
    const std::string before = snapshot("a", {"-s", "c=1", "-s", "m=1", "-s", "r=1"});
    const std::string after = snapshot("b", {"-s", "a=1", "-s", "c=2", "-d", "m=1"});
    const std::string one = R"("value":{"type":"string","value":"1"}})";
    const std::string two = R"("value":{"type":"string","value":"2"}})";
    EXPECT_EQ(
        (Result{1,
                R"({"differences":[{"key":"a","change":"added","after":{"source":"override",)" +
                    one + R"(},{"key":"c","change":"changed","before":{"source":"override",)" +
                    one + R"(,"after":{"source":"override",)" + two +
                    R"(},{"key":"m","change":"moved","before":{"source":"override",)" + one +
                    R"(,"after":{"source":"default",)" + one +
                    R"(},{"key":"r","change":"removed","before":{"source":"override",)" + one +
                    R"(}],"masked":[]})"
                    "\n",
                ""}),
        runConnectorConfig({"diff", "--json", before, after}));
    EXPECT_EQ((Result{0, "{\"differences\":[],\"masked\":[]}\n", ""}),
              runConnectorConfig({"--json", "diff", before, before}));
}

TEST_F(Diff, ComparesFilesOfAnyFormatWithoutTheirNames) {
    const std::string properties = file("a.properties", "net.port=80\nnet.host=h\n");
    EXPECT_EQ(
        (Result{0, "", ""}),
        runConnectorConfig({"diff", properties, file("b.yaml", "net: {port: '80', host: h}")}));
    EXPECT_EQ((Result{0, "", ""}),
              runConnectorConfig(
                  {"diff", properties, "path=" + file("c", "port=80\nhost=h\n") + ",group=net"}));
    EXPECT_EQ((Result{0, "", ""}),
              runConnectorConfig(
                  {"diff", properties, snapshot("d", {"-s", "net.port=80", "-d", "net.host=h"})}));
    EXPECT_EQ(
        (Result{1,
                "   KEY       TYPE    VALUE  SOURCE\n"
                "-  net.host  string  h      one\n"
                "-  net.port  string  80     one\n"
                "+  net.port  int     80     two\n",
                ""}),
        runConnectorConfig({"diff", "path=" + properties + ",name=one",
                            "path=" + file("e.json", R"({"net": {"port": 80}})") + ",name=two"}));
}

TEST_F(Diff, DoesNotTakeEveryJsonForASnapshot) {
    const std::string json = file("a.json", R"({"format": {"x": 1}, "sources": {"y": 2}})");
    EXPECT_EQ((Result{2, "",
                      "connector-config: " + json +
                          ": Not a valid snapshot: format: not a 32-bit integer\n"}),
              runConnectorConfig({"diff", json, json}));
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"diff", "path=" + json, "path=" + json}));
    const std::string other = file("b.json", R"({"format": {"x": 1}})");
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"diff", other, "path=" + other}));
    const std::string broken = file("c.properties", "{=1\n");
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"diff", broken, broken}));
}

TEST_F(Diff, DoesNotCallMaskedValuesChanged) {
    const std::string masked = snapshot("a", {"-s", "password=1", "-s", "a=1"});
    const std::string alsoMasked = snapshot("b", {"-s", "password=2", "-s", "a=1"});
    const std::string plain = file("c", "password=******\na=1\n");
    const std::string notice =
        "connector-config: Not compared, because the values are masked: password\n";
    EXPECT_EQ((Result{0, "", notice}), runConnectorConfig({"diff", masked, alsoMasked}));
    EXPECT_EQ((Result{0, "", notice}), runConnectorConfig({"diff", plain, masked}));
    EXPECT_EQ((Result{0, "{\"differences\":[],\"masked\":[\"password\"]}\n", notice}),
              runConnectorConfig({"diff", "--json", masked, alsoMasked}));
    EXPECT_EQ(
        (Result{1,
                "   KEY       TYPE    VALUE   SOURCE\n"
                "-  password  string  ******  override\n"
                "+  password  string  ******  default\n",
                notice}),
        runConnectorConfig({"diff", masked, snapshot("d", {"-d", "password=1", "-s", "a=1"})}));
    EXPECT_EQ((Result{1,
                      "   KEY       TYPE    VALUE   SOURCE\n"
                      "-  password  string  ******  override\n",
                      ""}),
              runConnectorConfig({"diff", masked, snapshot("e", {"-s", "a=1"})}));
}

TEST_F(Diff, ComparesSecretsThatItKnowsButMasksThem) {
    const std::string before = file("a", "password=hush\nuser=me\n");
    const std::string after = file("b", "password=more\nuser=you\n");
    const Result result = runConnectorConfig(
        {"diff", "path=" + before + ",name=x", "path=" + after + ",name=y", "--secret", "user"});
    EXPECT_EQ((Result{1,
                      "   KEY       TYPE    VALUE   SOURCE\n"
                      "-  password  string  ******  x\n"
                      "+  password  string  ******  y\n"
                      "-  user      string  ******  x\n"
                      "+  user      string  ******  y\n",
                      ""}),
              result);
    const std::string json = runConnectorConfig({"diff", "--json", before, after}).output;
    EXPECT_EQ(json.npos, json.find("hush")) << json;
    EXPECT_EQ(json.npos, json.find("more")) << json;
}

TEST_F(Diff, AsksServicesOnEitherSide) {
    const test::ServerProcess server({}, {"-s", "net.port:int=80", "-d", "token=hush"});
    const std::string url = "http://" + server.host() + ':' + std::to_string(server.port());
    const std::string same = snapshot("a", {"-s", "net.port:int=80", "-d", "token=hush"});
    const std::string other = file("b", "net.port=80\ntoken=x\n");
    const std::string notice =
        "connector-config: Not compared, because the values are masked: token\n";
    EXPECT_EQ((Result{0, "", notice}), runConnectorConfig({"diff", "--url", url, same}));
    EXPECT_EQ((Result{0, "", notice}), runConnectorConfig({"--url", url, "diff", same}));
    EXPECT_EQ((Result{0, "", notice}), runConnectorConfig({"diff", "--url", url, "--url", url}));
    const std::string named = "path=" + other + ",name=f";
    EXPECT_EQ((Result{1,
                      "   KEY       TYPE    VALUE  SOURCE\n"
                      "-  net.port  string  80     f\n"
                      "+  net.port  int     80     override\n",
                      notice}),
              runConnectorConfig({"diff", named, "--url", url}));
    EXPECT_EQ((Result{1,
                      "   KEY       TYPE    VALUE  SOURCE\n"
                      "-  net.port  int     80     override\n"
                      "+  net.port  string  80     f\n",
                      notice}),
              runConnectorConfig({"--url", url, "diff", named}));
}

TEST_F(Diff, ReadsASnapshotFromAPipe) {
    const std::string text = runConnectorConfig({"-s", "a=1", "snapshot"}).output;
    const std::string other = file("a", "a=1\n");
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"diff", "-", other}, text));
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"diff", other, "/dev/stdin"}, text));
    EXPECT_EQ((Result{2, "", "connector-config: -: Not a snapshot\n"}),
              runConnectorConfig({"diff", other, "-"}, "a=1\n"));
    EXPECT_EQ((Result{0, "", ""}),
              runConnectorConfig({"diff", other, "path=/dev/stdin,format=yaml"}, "a: '1'"));
}

TEST_F(Diff, ReportsASideThatCannotBeReadWithStatus2) {
    const std::string good = file("a", "a=1\n");
    EXPECT_EQ((Result{2, "",
                      "connector-config: File could not be read: /no/such: No such file or "
                      "directory\n"}),
              runConnectorConfig({"diff", good, "/no/such"}));
    EXPECT_EQ(2, runConnectorConfig({"diff", good, file("b.json", "[")}).status);
    EXPECT_EQ(2, runConnectorConfig({"diff", good, "--url", "unix:/no/such"}).status);
}

TEST_F(Diff, RequiresTwoSides) {
    const std::string message = "diff requires two sides, each a FILE or --url URL";
    for (const Arguments& arguments : {Arguments{"diff"},
                                       {"diff", "a"},
                                       {"diff", "a", "b", "c"},
                                       {"diff", "a", "b", "--url", "unix:x"},
                                       {"--url", "unix:x", "diff"}})
        EXPECT_EQ((Result{2, "", usageError(message)}), runConnectorConfig(arguments));
    EXPECT_EQ((Result{2, "", usageError("Standard input can be read only once")}),
              runConnectorConfig({"diff", "-", "-"}));
    EXPECT_EQ((Result{2, "", usageError("diff excludes --set")}),
              runConnectorConfig({"-s", "a=1", "diff", "a", "b"}));
    EXPECT_EQ((Result{2, "", usageError("diff excludes --snapshot")}),
              runConnectorConfig({"--snapshot", "c", "diff", "a", "b"}));
    EXPECT_EQ((Result{2, "",
                      usageError("Not of the form http://HOST:PORT, https://HOST:PORT or "
                                 "unix:PATH: x")}),
              runConnectorConfig({"diff", "a", "--url", "x"}));
    EXPECT_EQ((Result{2, "", usageError("Format is neither properties, json, yaml nor toml: x")}),
              runConnectorConfig({"diff", "a", "path=b,format=x"}));
}

TEST_F(Diff, RequiresAUrlWithHttpsForOptionsOfTls) {
    const Arguments authority{"--ca", "f"};
    const Arguments identity{"--client-cert", "f", "--client-key", "f"};
    const struct {
        int line;
        Arguments arguments;
        const Arguments& options;
        const char* message;
    } rows[] = {
        {__LINE__, {"diff", "a", "b"}, authority, "--ca requires --url"},
        {__LINE__, {"diff", "a", "b"}, identity, "--client-cert requires --url"},
        {__LINE__,
         {"diff", "a", "--url", "http://h:1"},
         authority,
         "--ca requires a URL with https: http://h:1"},
        {__LINE__,
         {"--url", "http://h:1", "diff", "a"},
         authority,
         "--ca requires a URL with https: http://h:1"},
        {__LINE__,
         {"diff", "--url", "unix:x", "--url", "unix:y"},
         identity,
         "--client-cert requires a URL with https: unix:x"},
    };
    for (auto row : rows) {
        SCOPED_TRACE(row.line);
        row.arguments.insert(row.arguments.end(), row.options.begin(), row.options.end());
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(row.arguments));
    }
}

} // namespace
