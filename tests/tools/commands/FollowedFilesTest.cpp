/// watch --reload and serve --reload
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "tools/support/Program.hpp"
#include "tools/support/Reloading.hpp"

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>

namespace {

using test::connectorConfig;
using test::Process;
using test::Result;
using test::watchers;

class FollowedFiles : public test::ReloadedFiles {};

TEST_F(FollowedFiles, AChangedFileIsReloadedAndToldInOneLine) {
    const std::string f = write("f", "k=1\na=1\nb=1\n");
    Process process(connectorConfig({"-f", f, "watch", "--reload", "k"}));
    EXPECT_EQ("k = 1  (f)", process.readLine());
    write("f", "k=2\nb=1\nc=1\nd=1\n");
    EXPECT_EQ("k = 2  (f)", process.readLine());
    EXPECT_EQ("reloaded f: 2 added, 1 changed, 1 removed", process.readErrorLine());
    write("f", "k=3\nb=1\nc=1\nd=1\n");
    EXPECT_EQ("k = 3  (f)", process.readLine());
    EXPECT_EQ("reloaded f: 0 added, 1 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(FollowedFiles, SeveralFilesAreFollowed) {
    Process process(connectorConfig({"-f", write("f.json", R"({"k": 1})"), "-f",
                                     write("g.yaml", "l: 1"), "watch", "k", "l", "--reload"}));
    EXPECT_EQ("k = 1  (f.json)", process.readLine());
    EXPECT_EQ("l = 1  (g.yaml)", process.readLine());
    write("g.yaml", "l: 2");
    EXPECT_EQ("l = 2  (g.yaml)", process.readLine());
    EXPECT_EQ("reloaded g.yaml: 0 added, 1 changed, 0 removed", process.readErrorLine());
    write("f.json", R"({"k": 2})");
    EXPECT_EQ("k = 2  (f.json)", process.readLine());
    EXPECT_EQ("reloaded f.json: 0 added, 1 changed, 0 removed", process.readErrorLine());
}

TEST_F(FollowedFiles, AFailureIsToldInOneLineAndTheValuesStay) {
    Process process(
        connectorConfig({"-f", write("f.json", R"({"k": 1})"), "watch", "--reload", "k", "end"}));
    EXPECT_EQ("k = 1  (f.json)", process.readLine());
    EXPECT_EQ("connector-config: No value yet: end", process.readErrorLine());
    write("f.json", R"({"k": 1, "k": 2})");
    EXPECT_EQ("connector-config: " + pathOf("f.json") + ":1:10: The key stands here a second time",
              process.readErrorLine());
    process.write("set end=1\n");
    EXPECT_EQ("end = 1  (override)", process.readLine()); // k was not printed again
    std::filesystem::remove(pathOf("f.json"));
    EXPECT_EQ("connector-config: " + pathOf("f.json") +
                  ": The file could not be read: No such file or directory",
              process.readErrorLine());
    write("f.json", R"({"k": 3})");
    EXPECT_EQ("k = 3  (f.json)", process.readLine());
    EXPECT_EQ("reloaded f.json: 0 added, 1 changed, 0 removed", process.readErrorLine());
}

TEST_F(FollowedFiles, AnOptionalFileIsReadOnceItExists) {
    const std::string f = "path=" + pathOf("f.yaml") + ",name=f,optional=true";
    Process process(connectorConfig({"-f", f, "watch", "--reload", "k"}));
    EXPECT_EQ("connector-config: No value yet: k", process.readErrorLine());
    write("f.yaml", "k: 1");
    EXPECT_EQ("k = 1  (f)", process.readLine());
    EXPECT_EQ("reloaded f: 1 added, 0 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(FollowedFiles, WhatTheAddLineAddsIsFollowed) {
    Process process(connectorConfig({"-d", "k=0", "watch", "--reload", "k"}));
    EXPECT_EQ("k = 0  (default)", process.readLine());
    process.write("add " + write("f.toml", "k = 1") + "\n");
    EXPECT_EQ("k = 1  (f.toml)", process.readLine());
    write("f.toml", "k = 2");
    EXPECT_EQ("k = 2  (f.toml)", process.readLine());
    EXPECT_EQ("reloaded f.toml: 0 added, 1 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(FollowedFiles, WhatTheRemoveLineRemovesIsNotFollowedAnyMore) {
    Process process(connectorConfig(
        {"-f", write("f", "k=1\n"), "-f", write("g", "k=2\n"), "watch", "--reload", "k"}));
    EXPECT_EQ("k = 2  (g)", process.readLine());
    EXPECT_EQ(2, watchers(process));
    process.write("remove g\nset k=3\n");
    EXPECT_EQ("k = 1  (f)", process.readLine());
    EXPECT_EQ("k = 3  (override)", process.readLine()); // the line before has been executed
    EXPECT_EQ(1, watchers(process));
    process.write("add " + write("g", "k=4\n") + "\nset k=5\n"); // the name is free again
    EXPECT_EQ("k = 3  (override)", process.readLine());
    EXPECT_EQ("k = 5  (override)", process.readLine());
    EXPECT_EQ(2, watchers(process));
}

TEST_F(FollowedFiles, FilesAreNotFollowedWithoutTheOption) {
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "watch", "k"}));
    EXPECT_EQ("k = 1  (f)", process.readLine());
    EXPECT_EQ(0, watchers(process));
}

TEST_F(FollowedFiles, DevicesAreNotFollowed) {
    Process process(connectorConfig({"-f", "/dev/null", "-d", "k=1", "watch", "--reload", "k"}));
    EXPECT_EQ("k = 1  (default)", process.readLine());
    EXPECT_EQ(0, watchers(process));
}

TEST_F(FollowedFiles, AFileThatCannotBeFollowedIsNotAdded) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "the checks of types need descriptors of their own";
#endif
    const std::string f = write("f", "k=1\n");
    Process process(connectorConfig({"-d", "k=0", "watch", "--reload", "k"}));
    EXPECT_EQ("k = 0  (default)", process.readLine());
    rlimit limit{};
    ASSERT_EQ(0, ::prlimit(process.processId(), RLIMIT_NOFILE, nullptr, &limit));
    const rlimit old = limit;
    limit.rlim_cur = test::nextDescriptor(process) + 1; // enough to read the file
    ASSERT_EQ(0, ::prlimit(process.processId(), RLIMIT_NOFILE, &limit, nullptr));
    process.write("add " + f + "\n");
    EXPECT_EQ("k = 1  (f)", process.readLine());
    EXPECT_EQ("k = 0  (default)", process.readLine());
    EXPECT_EQ("connector-config: Files cannot be watched: Too many open files",
              process.readErrorLine());
    ASSERT_EQ(0, ::prlimit(process.processId(), RLIMIT_NOFILE, &old, nullptr));
    process.write("add " + f + "\n");
    EXPECT_EQ("k = 1  (f)", process.readLine());
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(FollowedFiles, WatchEndsWhenAReloadCannotBeWritten) {
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "watch", "--reload", "k"}));
    EXPECT_EQ("k = 1  (f)", process.readLine());
    process.closeOutput();
    write("f", "k=2\n");
    EXPECT_EQ("reloaded f: 0 added, 1 changed, 0 removed", process.readErrorLine());
    EXPECT_EQ("", process.readErrorLine()); // its end, although the input stays open
    EXPECT_EQ((Result{1, "", ""}), process.finish());
}

TEST_F(FollowedFiles, TheTraceMasksTheSecretsOfAReloadedGroup) {
    write("f", "a=1\n");
    Process process(connectorConfig(
        {"--trace", "-f", "path=" + pathOf("f") + ",group=token", "watch", "--reload", "token.a"}));
    EXPECT_EQ("token.a = ******  (" + pathOf("f") + ")", process.readLine());
    write("f", "a=hush\n");
    EXPECT_EQ("token.a = ******  (" + pathOf("f") + ")", process.readLine());
    const Result result = process.finish();
    EXPECT_EQ(result.errors.npos, result.errors.find("hush")) << result.errors;
    const std::string parsed = "Parsed property: a = ******\n";
    EXPECT_NE(result.errors.find(parsed), result.errors.rfind(parsed)) << result.errors;
}

TEST_F(FollowedFiles, ServeFollowsThemToo) {
    const std::string get =
        R"({"type":"connector/configuration/ConfigurationGet","message":{"key":"k"}})"
        "\n";
    Process process(connectorConfig({"-f", write("f", "k=1\n"), "serve", "--reload"}));
    process.write(get);
    EXPECT_NE(std::string::npos, process.readLine().find(R"("value":"1")"));
    write("f", "k=2\n");
    EXPECT_EQ("reloaded f: 0 added, 1 changed, 0 removed", process.readErrorLine());
    process.write(get);
    EXPECT_NE(std::string::npos, process.readLine().find(R"("value":"2")"));
    EXPECT_EQ((Result{0, "", ""}), process.finish());
}

TEST_F(FollowedFiles, ServeOverHttpFollowsThemToo) {
    test::ServerProcess server({"--reload"}, {"-f", write("f", "k=1\n")});
    write("f", "k=2\n");
    EXPECT_EQ("reloaded f: 0 added, 1 changed, 0 removed", server.process().readErrorLine());
    EXPECT_NE(std::string::npos, test::get(server.port(), "/options/k").body.find(R"("2")"));
    EXPECT_EQ((Result{0, "", ""}), server.stop(SIGTERM));
}

} // namespace
