/// fleet put, delete, export and status
#include "Fleet.hpp"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

using test::Fleet;
using test::Result;
using test::runConnectorConfig;

using Texts = std::map<std::string, std::string>;

TEST_F(Fleet, PutWritesInOneTransactionAndPrintsTheRevision) {
    put("before", "1");
    const Result result = fleet({"put", "b=1", "c=2"});
    const std::int64_t revision = client.list("fleet/").revision;
    EXPECT_EQ(3, revision);
    EXPECT_EQ((Result{0, std::to_string(revision) + '\n', ""}), result);
    EXPECT_EQ((Texts{{"before", "1"}, {"b", "1"}, {"c", "2"}}), texts());
}

TEST_F(Fleet, PutKeepsTypes) {
    fleet({"put", "log.level=debug", "n:int=5", "l:boolArray=[true]", R"(o={"type":"int"})"});
    EXPECT_EQ((Texts{{"log.level", "debug"},
                     {"n", R"({"type":"int","value":5})"},
                     {"l", R"({"type":"boolArray","value":[true]})"},
                     {"o", R"({"type":"string","value":"{\"type\":\"int\"}"})"}}),
              texts());
}

TEST_F(Fleet, PutWarnsOfATypeThatIsNone) {
    EXPECT_EQ((Result{0, "2\n",
                      "connector-config: Warning: unknown type, taken as part of the key: "
                      "n:integer\n"}),
              fleet({"put", "n:integer=5"}));
}

TEST_F(Fleet, Puts128OptionsAtOnce) {
    test::Arguments arguments{"put"};
    for (int i = 0; i < 128; ++i)
        arguments.push_back("key" + std::to_string(i) + "=1");
    EXPECT_EQ((Result{0, "2\n", ""}), fleet(arguments));
    EXPECT_EQ(128u, texts().size());
}

TEST_F(Fleet, DeleteErasesInOneTransactionAndPrintsHowManyThereWere) {
    put("a", "1");
    put("b", "2");
    const std::int64_t before = put("c", "3");
    EXPECT_EQ((Result{0, "2\n", ""}), fleet({"delete", "a", "missing", "b", "a"}));
    EXPECT_EQ((Texts{{"c", "3"}}), texts());
    EXPECT_EQ(before + 1, client.list("fleet/").revision);
    EXPECT_EQ((Result{0, "0\n", ""}), fleet({"delete", "a"}));
}

TEST_F(Fleet, ExportWritesEveryOptionWithItsTypeUnmasked) {
    put("db.password", "hush");
    put("n", R"({"type":"double","value":0.5})");
    EXPECT_EQ((Result{0,
                      R"({"options":{"db.password":{"type":"string","value":"hush"},)"
                      R"("n":{"type":"double","value":0.5}}})"
                      "\n",
                      ""}),
              fleet({"export"}));
    EXPECT_EQ(fleet({"export"}), fleet({"export", "--format=json"}));
    EXPECT_EQ(fleet({"export"}), fleet({"export", "--json"}));
}

TEST_F(Fleet, ExportWritesPropertiesWithoutTypes) {
    put("db.password", "hush");
    put("a b", " x\n");
    put("n", R"({"type":"intArray","value":[1,2]})");
    put("u", R"({"type":"ustring","value":"grün"})");
    EXPECT_EQ((Result{0, "a\\ b=\\ x\\u000A\ndb.password=hush\nn=[1,2]\nu=grün\n", ""}),
              fleet({"export", "--format=properties"}));
}

TEST_F(Fleet, ExportOfNothingIsADocumentToo) {
    EXPECT_EQ((Result{0, "{\"options\":{}}\n", ""}), fleet({"export"}));
    EXPECT_EQ((Result{0, "", ""}), fleet({"export", "--format=properties"}));
}

TEST_F(Fleet, ExportNamesTheKeysThatCannotBeRead) {
    put("a", "1");
    put("bad", R"({"type":"int"})");
    put("worse", "\xFF");
    for (const char* format : {"--format=json", "--format=properties"})
        EXPECT_EQ((Result{1, "",
                          "connector-config: Value cannot be read: bad\n"
                          "connector-config: Value cannot be read: worse\n"}),
                  fleet({"export", format}));
}

TEST_F(Fleet, StatusTellsWhatTheEngineHas) {
    put("a", "1");
    put("b", "2");
    put("bad", R"({"type":"int"})");
    const std::string other = std::to_string(client.put("elsewhere", "x"));
    // {"header":{"cluster_id":ID, ...
    const std::string json = server.control("get none -w json");
    const auto id =
        std::strtoull(json.c_str() + json.find(':', json.find("cluster_id")) + 1, nullptr, 10);
    char cluster[32];
    std::snprintf(cluster, sizeof cluster, "%llx", id);
    EXPECT_EQ((Result{0,
                      "{\"state\":\"current\",\"revision\":" + other + ",\"clusterId\":\"" +
                          cluster + "\",\"keys\":2,\"unreadable\":[\"bad\"],\"failure\":null}\n",
                      ""}),
              fleet({"status", "--json"}));
    EXPECT_EQ((Result{0,
                      "state       current\nrevision    " + other + "\ncluster     " + cluster +
                          "\nkeys        2\nunreadable  bad\n",
                      ""}),
              fleet({"status"}));
}

TEST_F(Fleet, CommandsUseUserAndPasswordFile) {
    for (const char* words : {"user add root:secret", "user grant-role root root", "auth enable"})
        server.control(words);
    const test::TemporaryFile password("secret\n");
    const std::string user = etcd(",user=root,password-file=" + password.path());
    EXPECT_EQ(0, runConnectorConfig({"--etcd", user, "fleet", "put", "a=1"}).status);
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"--etcd", user, "get", "a"}));
    const test::TemporaryFile wrong("wrong");
    const Result refused = runConnectorConfig(
        {"--etcd", etcd(",user=root,password-file=" + wrong.path()), "fleet", "put", "a=1"});
    EXPECT_EQ(1, refused.status);
    EXPECT_EQ("connector-config: Not written: " + server.endpoint() +
                  ": etcdserver: authentication failed, invalid user ID or password\n",
              refused.errors);
}

TEST_F(Fleet, CommandsGiveUpAfterFiveSeconds) {
    server.freeze();
    EXPECT_EQ(
        (Result{1, "",
                "connector-config: Not written: " + server.endpoint() + ": no answer in time\n"}),
        fleet({"put", "a=1"}));
    server.thaw();
}

/// The commands wait for five seconds, all at once.
class FleetWithoutAnEngine : public testing::Test {
protected:
    std::unique_ptr<test::Process> start(test::Arguments command) const {
        command.insert(command.begin(), {"--etcd", "endpoint=" + endpoint + ",prefix=p", "fleet"});
        return std::make_unique<test::Process>(test::connectorConfig(command));
    }

    const std::string endpoint = test::nobody();
    const std::string cause = endpoint + ": failed to connect";
};

TEST_F(FleetWithoutAnEngine, CommandsNameEndpointAndCause) {
    std::vector<std::unique_ptr<test::Process>> commands;
    for (const test::Arguments& command :
         {test::Arguments{"put", "a=1"}, {"delete", "a"}, {"import", "/dev/null"}, {"export"}})
        commands.push_back(start(command));
    for (const auto& command : commands) {
        const Result result = command->finish();
        EXPECT_EQ(1, result.status);
        EXPECT_EQ("", result.output);
        EXPECT_NE(std::string::npos, result.errors.find(cause)) << result.errors;
        EXPECT_NE(std::string::npos, result.errors.find("Connection refused")) << result.errors;
    }
}

TEST_F(FleetWithoutAnEngine, StatusTellsStateAndFailure) {
    const auto json = start({"status", "--json"});
    const Result text = start({"status"})->finish();
    EXPECT_EQ(1, text.status);
    EXPECT_EQ("", text.errors);
    EXPECT_EQ(0u, text.output.find("state    stale\nfailure  " + cause)) << text.output;
    const Result object = json->finish();
    EXPECT_EQ(1, object.status);
    EXPECT_EQ("", object.errors);
    EXPECT_EQ(0u, object.output.find("{\"state\":\"stale\",\"failure\":\"" + cause))
        << object.output;
}

} // namespace
