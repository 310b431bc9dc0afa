/// connector-config snapshot, and --snapshot for the other commands
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <Poco/JSON/Object.h>
#include <Poco/JSON/Parser.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::runInShell;
using test::usageError;

using Arguments = std::vector<std::string>;

Arguments joined(Arguments first, const Arguments& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// Sources of all kinds, with groups, equal orders and values of several types.
class SnapshotCommand : public testing::Test {
protected:
    /// @return the path of a snapshot of the sources
    std::string snapshot(const Arguments& options = {}) const {
        const Result result = runConnectorConfig(joined(sources, joined({"snapshot"}, options)));
        EXPECT_EQ(0, result.status) << result.errors;
        return directory.write("snapshot.json", result.output);
    }

    const test::TemporaryDirectory directory;
    const std::string site =
        directory.write("site", "net.port=9090\nlatin=caf\xe9\nk\xff=1\ndb.password=hush\n");
    const Arguments sources{"-f", "path=" + site + ",name=site",
                            "-f", "path=" + site + ",name=again,group=shop",
                            "-f", "path=" + site + ",name=pinned,order=-1,group=net",
                            "-s", "net.port:uint=80",
                            "-s", "list:ustringArray=[\"gr\u00fcn\"]",
                            "-d", "big:double=1e300",
                            "-d", "a\nb=x\x1by"};
};

TEST_F(SnapshotCommand, HasAllSourcesInOrder) {
    EXPECT_EQ((Result{0,
                      "{\"format\": 1, \"sources\": [\n"
                      " {\"name\": \"override\", \"group\": \"\", \"order\": 0, \"readOnly\": "
                      "false, \"entries\": [\n"
                      "  {\"key\": \"a\", \"value\": {\"type\": \"int\", \"value\": 1}}]},\n"
                      " {\"name\": \"f\", \"group\": \"g.\", \"order\": 7, \"readOnly\": true, "
                      "\"entries\": []},\n"
                      " {\"name\": \"default\", \"group\": \"\", \"order\": 2147483647, "
                      "\"readOnly\": false, \"entries\": []}]}\n",
                      ""}),
              runConnectorConfig(
                  {"-s", "a:int=1", "-f", "path=/dev/null,name=f,group=g,order=7", "snapshot"}));
}

TEST_F(SnapshotCommand, LetsOtherCommandsSayWhatTheySaidThere) {
    const std::string file = snapshot({"--with-secrets"});
    const Arguments commands[] = {
        {"show"},
        {"show", "--json"},
        {"show", "net."},
        {"keys"},
        {"keys", "--json", "shop."},
        {"explain", "net.port"},
        {"explain", "shop.net.port"},
        {"explain", "net.net.port", "--json"},
        {"explain", "db.password"},
        {"get", "net.port", "nope", "latin", "db.password"},
        {"get", "--json", "list", "big", "a\nb"},
        {"get", "--export", "net.port", "latin"},
        {"plan", "remove", "site"},
        {"plan", "set", "net.port=1", "@default"},
        {"plan", "set", "net.port=1", "@site"},
        {"plan", "add", "path=" + site + ",name=more,order=-2", "--json"},
        {"snapshot"},
        {"snapshot", "--with-secrets"},
        {"snapshot", "--secret", "net.*"},
    };
    for (const Arguments& command : commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        EXPECT_EQ(runConnectorConfig(joined(sources, command)),
                  runConnectorConfig(joined({"--snapshot", file}, command)));
    }
}

TEST_F(SnapshotCommand, LetsWatchSayWhatItSaidThere) {
    const std::string file = snapshot();
    const std::string lines = "set net.port=1\nset net.port=2 @site\nset db.password=new @default\n"
                              "remove override\nadd path=" +
                              site + ",name=more\nremove nope\n";
    const Arguments command{"watch", "net.port", "shop.net.port", "db.password", "nope"};
    EXPECT_EQ(runConnectorConfig(joined(sources, command), lines),
              runConnectorConfig(joined({"--snapshot", file}, command), lines));
}

TEST_F(SnapshotCommand, MasksSecretsUnlessTheyAreAskedFor) {
    const auto output = [this](const Arguments& options) {
        return runConnectorConfig(joined(sources, joined({"snapshot"}, options))).output;
    };
    EXPECT_EQ(std::string::npos, output({}).find("hush"));
    EXPECT_NE(std::string::npos, output({"--with-secrets"}).find("hush"));
    EXPECT_NE(std::string::npos, output({}).find("9090"));
    EXPECT_EQ(std::string::npos, output({"--secret", "*port"}).find("9090"));
    // The group is a part of the key.
    const std::string grouped =
        runConnectorConfig({"-f", "path=" + site + ",name=s,group=token", "snapshot"}).output;
    EXPECT_EQ(std::string::npos, grouped.find("9090")) << grouped;
}

TEST_F(SnapshotCommand, KnowsThatValuesAreMasked) {
    const std::string file = snapshot();
    EXPECT_EQ(
        (Result{1, "9090\n", "connector-config: Value is masked in the snapshot: db.password\n"}),
        runConnectorConfig({"--snapshot", file, "get", "db.password", "shop.net.port"}));
    EXPECT_EQ(1, runConnectorConfig({"--snapshot", file, "get", "--export", "db.password"}).status);
    EXPECT_EQ((Result{0,
                      "KEY          TYPE    VALUE   SOURCE\n"
                      "db.password  string  ******  site\n",
                      ""}),
              runConnectorConfig({"--snapshot", file, "show", "db."}));
    // What is masked stays masked.
    const std::string again =
        runConnectorConfig({"--snapshot", file, "snapshot", "--with-secrets"}).output;
    EXPECT_NE(again.npos, again.find("{\"key\": \"db.password\", \"masked\": true}")) << again;
    EXPECT_EQ((Result{1, "",
                      "connector-config: Masked values cannot be served: net.db.password in "
                      "pinned\n"}),
              runConnectorConfig({"--snapshot", file, "serve"}));
}

TEST_F(SnapshotCommand, CanBeServed) {
    EXPECT_EQ((Result{0,
                      R"({"id":1,"type":"connector/configuration/ConfigurationOptionResponse",)"
                      R"("message":{"key":"db.password","source":"site","value":)"
                      R"({"type":"string","value":"hush"}}})"
                      "\n",
                      ""}),
              runConnectorConfig({"--snapshot", snapshot({"--with-secrets"}), "serve"},
                                 R"({"id": 1, "type": "connector/configuration/ConfigurationGet", )"
                                 R"("message": {"key": "db.password"}})"
                                 "\n"));
}

TEST_F(SnapshotCommand, EscapesControlCharacters) {
    const std::string output = runConnectorConfig({"-s", "k=\x1b\x7f\xc2\x9b", "snapshot"}).output;
    EXPECT_NE(output.npos, output.find(R"("\u001B\u007f\u009b")")) << output;
}

TEST_F(SnapshotCommand, MayComeFromStandardInput) {
    const std::string text = runConnectorConfig({"-s", "a:int=1", "snapshot"}).output;
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"--snapshot", "-", "get", "a"}, text));
    EXPECT_EQ((Result{2, "", usageError("Standard input can be read only once")}),
              runConnectorConfig({"--snapshot", "-", "watch", "a"}, text));
    EXPECT_EQ((Result{2, "", usageError("Standard input can be read only once")}),
              runConnectorConfig({"--snapshot", "-", "serve"}, text));
}

TEST_F(SnapshotCommand, ReportsWhatIsWrongWithTheFile) {
    const std::string file = directory.write("bad.json", R"({"format": 2, "sources": []})");
    EXPECT_EQ((Result{1, "",
                      "connector-config: " + file +
                          ": Not a valid snapshot: format: unknown format: 2\n"}),
              runConnectorConfig({"--snapshot", file, "show"}));
    EXPECT_EQ((Result{1, "",
                      "connector-config: File could not be read: /no/such: No such file or "
                      "directory\n"}),
              runConnectorConfig({"--snapshot", "/no/such", "show"}));
}

TEST_F(SnapshotCommand, ExcludesOtherSources) {
    const struct {
        Arguments arguments;
        const char* message;
    } rows[] = {
        {{"-f", "x", "show"}, "--snapshot excludes --file"},
        {{"--env", "x", "show"}, "--snapshot excludes --env"},
        {{"-s", "x=1", "show"}, "--snapshot excludes --set"},
        {{"-d", "x=1", "show"}, "--snapshot excludes --default"},
        {{"watch", "--reload", "x"}, "--snapshot excludes --reload"},
        {{"--url", "unix:x", "show"}, "--url excludes --snapshot"},
        {{"-f", "x", "plan", "remove", "y"}, "--snapshot excludes --file"},
        {{"set", "a=1"}, "set requires --url"},
        {{"diff", "a", "b"}, "diff excludes --snapshot"},
    };
    for (const auto& row : rows)
        EXPECT_EQ((Result{2, "", usageError(row.message)}),
                  runConnectorConfig(joined({"--snapshot", "file"}, row.arguments)))
            << row.message;
    EXPECT_EQ((Result{2, "", usageError("--url excludes snapshot")}),
              runConnectorConfig({"--url", "unix:x", "snapshot"}));
    EXPECT_EQ((Result{2, "", usageError("Unexpected argument: --with-secrets")}),
              runConnectorConfig({"show", "--with-secrets"}));
}

} // namespace
