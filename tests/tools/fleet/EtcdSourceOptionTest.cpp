/// --etcd for the commands that answer once
#include "Fleet.hpp"

#include "etcd/support/Certificates.hpp"
#include "support/TemporaryDirectory.hpp"

#include <filesystem>

namespace {

using test::Result;
using test::runConnectorConfig;

class EtcdSourceOption : public test::Fleet {
protected:
    const test::TemporaryDirectory folder;
};

TEST_F(EtcdSourceOption, SuppliesOptionsToEveryCommand) {
    put("net.port", R"({"type":"int","value":8080})");
    put("net.host", "localhost");
    client.put("elsewhere", "x");
    EXPECT_EQ((Result{0, "8080\nlocalhost\n", ""}), run({"get", "net.port", "net.host"}));
    EXPECT_EQ((Result{0, "net.host\nnet.port\n", ""}), run({"keys", "net."}));
    EXPECT_EQ((Result{0,
                      "KEY       TYPE    VALUE      SOURCE\n"
                      "net.host  string  localhost  etcd\n"
                      "net.port  int     8080       etcd\n",
                      ""}),
              run({"show"}));
    EXPECT_EQ((Result{0,
                      "override  order 0                      does not have it\n"
                      "etcd      order 60          read-only  supplies the value  8080\n"
                      "default   order 2147483647             does not have it\n"
                      "set net.port would go to override and would take effect\n",
                      ""}),
              run({"explain", "net.port"}));
}

TEST_F(EtcdSourceOption, HasNameGroupAndOrderOfItsMembers) {
    put("port", "1");
    const Result result =
        runConnectorConfig({"explain", "net.port", "--etcd", etcd(",order=7,group=net,name=n")});
    EXPECT_EQ("n         order 7           group net.  read-only  supplies the value  1",
              result.output.substr(result.output.find("n  "), 72))
        << result.output;
}

TEST_F(EtcdSourceOption, MayBeRepeated) {
    put("a", "fleet");
    put("b", "fleet");
    client.put("canary/a", "canary");
    EXPECT_EQ((Result{0, "canary\nfleet\n", ""}),
              runConnectorConfig(
                  {"--etcd", etcd(), "--etcd",
                   "endpoint=" + server.endpoint() + ",prefix=canary/,name=canary,order=50", "get",
                   "a", "b"}));
    EXPECT_EQ(
        (Result{1, "", "connector-config: Source with the requested name already exists: etcd\n"}),
        runConnectorConfig({"--etcd", etcd(), "--etcd", etcd(), "keys"}));
}

TEST_F(EtcdSourceOption, MasksSecrets) {
    put("db.password", "hush");
    EXPECT_EQ((Result{0,
                      "KEY          TYPE    VALUE   SOURCE\n"
                      "db.password  string  ******  etcd\n",
                      ""}),
              run({"show"}));
}

TEST_F(EtcdSourceOption, WaitsFiveSecondsForTheEngineAndFails) {
    server.freeze();
    EXPECT_EQ((Result{1, "",
                      "connector-config: etcd does not answer: " + server.endpoint() +
                          ": no answer in time\n"}),
              run({"keys"}));
    server.thaw();
}

TEST_F(EtcdSourceOption, TakesTheCacheFileIfTheEngineDoesNotAnswer) {
    put("a", "1");
    const std::string cache = ",cache=" + (folder.path / "cache").string();
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"--etcd", etcd(cache), "get", "a"}));
    put("a", "2");
    EXPECT_EQ((Result{0, "2\n", ""}), runConnectorConfig({"--etcd", etcd(cache), "get", "a"}));
    server.kill();
    EXPECT_EQ((Result{0, "2\n", ""}), runConnectorConfig({"--etcd", etcd(cache), "get", "a"}));
    EXPECT_EQ((Result{0, "2\n", ""}),
              runConnectorConfig({"--etcd", etcd(cache + ",start=cached"), "get", "a"}));
}

TEST_F(EtcdSourceOption, SaysThatItBeginsEmptyWithoutACacheFile) {
    server.kill();
    const std::string missing = (folder.path / "missing").string();
    EXPECT_EQ((Result{0, "", "etcd: begins empty, without a cache file: " + missing + '\n'}),
              runConnectorConfig({"--etcd", etcd(",start=cached,cache=" + missing), "keys"}));
    EXPECT_EQ((Result{0, "", "n: begins empty, without a cache file\n"}),
              runConnectorConfig({"--etcd", etcd(",name=n,start=cached"), "keys"}));
    const std::string damaged = folder.write("damaged", "x").string();
    EXPECT_EQ((Result{0, "", "etcd: begins empty, without a cache file: " + damaged + '\n'}),
              runConnectorConfig({"--etcd", etcd(",start=cached,cache=" + damaged), "keys"}));
}

TEST_F(EtcdSourceOption, AnswersAtOnceWithStartEmpty) {
    server.kill();
    EXPECT_EQ((Result{0, "", ""}), runConnectorConfig({"--etcd", etcd(",start=empty"), "keys"}));
}

TEST(EtcdSourceOptionWithTls, TrustsTheAuthorityOfItsMember) {
    const test::Certificates certificates;
    const test::EtcdServer server({}, test::ServerTls{certificates.file("ca.pem"),
                                                      certificates.file("server.pem"),
                                                      certificates.file("server.key")});
    const std::string etcd = "endpoint=" + server.endpoint() + ",prefix=fleet/";
    const std::string trusting = etcd + ",ca=" + certificates.file("ca.pem");
    EXPECT_EQ(0, runConnectorConfig({"--etcd", trusting, "fleet", "put", "a=1"}).status);
    EXPECT_EQ((Result{0, "a\n", ""}), runConnectorConfig({"--etcd", trusting, "keys"}));
    EXPECT_EQ(1, runConnectorConfig({"--etcd", etcd, "keys"}).status);
    EXPECT_EQ((Result{1, "",
                      "connector-config: The file cannot be read: " + certificates.file("missing") +
                          '\n'}),
              runConnectorConfig(
                  {"--etcd", etcd + ",ca=" + certificates.file("missing"), "fleet", "export"}));
}

} // namespace
