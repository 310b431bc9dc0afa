/// SIGHUP makes watch and serve reload all files once.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "tools/support/Program.hpp"
#include "tools/support/Reloading.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include <sys/stat.h>

namespace {

using test::connectorConfig;
using test::Process;
using test::Result;

class Hangup : public test::ReloadedFiles {};

/// @return whether connector-config has replaced itself by the program for the network
bool isNetworkProgram(pid_t process) {
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", ignored)
               .filename() == "connector-config-network";
}

TEST_F(Hangup, ReloadsAllFilesInTheirOrderAndTellsEach) {
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "-f", write("g.json", "{}"), "-f",
                                     write("h.yaml", "l: 1"), "watch", "k"}));
    EXPECT_EQ("k = 1  (f)", process.readLine());
    write("f", "k=2\na=1\n");
    write("h.yaml", "[");
    process.signal(SIGHUP);
    EXPECT_EQ("k = 2  (f)", process.readLine());
    EXPECT_EQ("reloaded f: 1 added, 1 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ("reloaded g.json: 0 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ(0u, process.readErrorLine().find("connector-config: " + pathOf("h.yaml") + ":1:"));
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, ReloadsFilesThatAreFollowedToo) {
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "watch", "--reload", "k"}));
    EXPECT_EQ("k = 1  (f)", process.readLine());
    process.signal(SIGHUP);
    EXPECT_EQ("reloaded f: 0 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, ReloadsWhatWasAddedAndNotWhatWasRemoved) {
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "watch", "k"}));
    EXPECT_EQ("k = 1  (f)", process.readLine());
    process.write("add " + write("g", "k=2\n") + "\nremove f\nset k=3\n");
    EXPECT_EQ("k = 2  (g)", process.readLine());
    EXPECT_EQ("k = 2  (g)", process.readLine());
    EXPECT_EQ("k = 3  (override)", process.readLine());
    process.signal(SIGHUP);
    EXPECT_EQ("reloaded g: 0 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, AnOptionalFileThatIsStillMissingIsNoFailure) {
    const std::string f = "path=" + pathOf("f") + ",name=f,optional=true";
    Process process(connectorConfig({"-f", f, "-d", "k=0", "watch", "k"}));
    EXPECT_EQ("k = 0  (default)", process.readLine());
    process.signal(SIGHUP);
    EXPECT_EQ("reloaded f: 0 added, 0 changed, 0 removed", process.readErrorLine());
    write("f", "k=1\n");
    process.signal(SIGHUP);
    EXPECT_EQ("k = 1  (f)", process.readLine());
    EXPECT_EQ("reloaded f: 1 added, 0 changed, 0 removed", process.readErrorLine());
    std::filesystem::remove(pathOf("f"));
    process.signal(SIGHUP);
    EXPECT_EQ("connector-config: " + pathOf("f") +
                  ": The file could not be read: No such file or directory",
              process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, PipesAreReadOnce) {
    const std::string pipe = pathOf("pipe");
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    Process process(connectorConfig(
        {"-f", "path=" + pipe + ",name=p", "-f", write("f", "l=1\n"), "watch", "--reload", "k"}));
    std::ofstream(pipe) << "k=1\n"; // opening it waits until the program does
    EXPECT_EQ("k = 1  (p)", process.readLine());
    process.signal(SIGHUP);
    EXPECT_EQ("reloaded f: 0 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, WatchGoesOnWithoutFilesAndAfterManySignals) {
    Process process(connectorConfig({"-d", "k=0", "watch", "k"}));
    EXPECT_EQ("k = 0  (default)", process.readLine());
    for (int i = 0; i < 100; ++i)
        process.signal(SIGHUP);
    process.write("set k=1\n");
    EXPECT_EQ("k = 1  (override)", process.readLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, ServeReloadsAndGoesOn) {
    const std::string get =
        R"({"type":"connector/configuration/ConfigurationGet","message":{"key":"k"}})"
        "\n";
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "serve"}));
    process.write(get);
    EXPECT_NE(std::string::npos, process.readLine().find(R"("value":"1")"));
    write("f", "k=2\n");
    process.signal(SIGHUP);
    EXPECT_EQ("reloaded f: 0 added, 1 changed, 0 removed", process.readErrorLine());
    process.write(get);
    EXPECT_NE(std::string::npos, process.readLine().find(R"("value":"2")"));
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, ServeDoesNotReloadTheFilesOfMessages) {
    write("m", "k=1\n");
    Process process(connectorConfig({"-f", write("f", "l=1\n"), "serve", "--reload"}));
    process.write(
        R"({"type":"connector/configuration/AddPropertyFileSource","message":{"name":"m","path":")" +
        pathOf("m") + "\"}}\n");
    EXPECT_EQ(R"({"type":"connector/Message","message":{}})", process.readLine());
    EXPECT_EQ(1, test::watchers(process));
    process.signal(SIGHUP);
    EXPECT_EQ("reloaded f: 0 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, ServeOverHttpReloadsAndGoesOn) {
    test::ServerProcess server({}, {"-f", write("f", "k=1\n")});
    write("f", "k=2\n");
    server.process().signal(SIGHUP);
    EXPECT_EQ("reloaded f: 0 added, 1 changed, 0 removed", server.process().readErrorLine());
    EXPECT_NE(std::string::npos, test::get(server.port(), "/options/k").body.find(R"("2")"));
    EXPECT_EQ((Result{0, "", ""}), server.stop(SIGTERM));
}

TEST_F(Hangup, DoesNotEndTheProgramWhileItReadsItsFiles) {
    const std::string pipe = pathOf("pipe");
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    Process process(connectorConfig(
        {"-f", write("f", "l=1\n"), "-f", "path=" + pipe + ",name=p", "watch", "k"}));
    {
        std::ofstream stream(pipe); // waits until the program reads it
        process.signal(SIGHUP);
        stream << "k=1\n";
    }
    EXPECT_EQ("k = 1  (p)", process.readLine());
    EXPECT_EQ("reloaded f: 0 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(Hangup, DoesNotEndWatchOnAService) {
    const test::ServerProcess server({"--writable", ""}, {"-s", "k=1"});
    Process process(connectorConfig(
        {"--url", "http://127.0.0.1:" + std::to_string(server.port()), "watch", "k"}));
    EXPECT_NE("", process.readLine());
    process.signal(SIGHUP);
    EXPECT_EQ(200, test::put(server.port(), "k", "2").status);
    EXPECT_NE("", process.readLine());
    process.signal(SIGTERM);
    EXPECT_EQ(128 + SIGTERM, process.finish().status);
}

TEST_F(Hangup, IsBlockedBeforeTheProgramForTheNetworkStarts) {
    for (int i = 0; i < 10; ++i) {
        Process process(connectorConfig({"serve", "--http", "unix:" + pathOf("socket")}));
        while (!isNetworkProgram(process.processId())) {
        }
        process.signal(SIGHUP);
        EXPECT_EQ(0u, process.readLine().find("listening on "));
        process.signal(SIGTERM);
        EXPECT_EQ((Result{0, "", ""}), process.finish());
    }
}

} // namespace
