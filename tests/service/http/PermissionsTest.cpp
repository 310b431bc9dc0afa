/// What HTTP clients may change.
#include "service/support/HttpClient.hpp"
#include "service/support/ServerProcess.hpp"
#include "support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <filesystem>

#include <sys/stat.h>

namespace {

using test::addMessage;
using test::errorOf;
using test::get;
using test::HttpResponse;
using test::post;
using test::ServerProcess;
using test::setMessage;
namespace fs = std::filesystem;

void expectRefusal(const std::string& text, const HttpResponse& response) {
    EXPECT_EQ(403, response.status);
    EXPECT_EQ(text, errorOf(response.body));
}

TEST(SettingOptions, IsRefusedWithoutAWritablePrefix) {
    const ServerProcess server;
    expectRefusal("Key must not be set: a (--writable PREFIX would allow it)",
                  post(server.port(), setMessage("a", "1")));
    EXPECT_EQ(404, get(server.port(), "/options/a").status);
}

TEST(SettingOptions, IsAllowedForKeysWithAWritablePrefix) {
    const ServerProcess server({"--writable", "net.", "--writable", "[a]"});
    EXPECT_EQ(200, post(server.port(), setMessage("net.port", "1")).status);
    EXPECT_EQ(200, post(server.port(), setMessage("net.", "1")).status);
    EXPECT_EQ(200, post(server.port(), setMessage("[a]b", "1")).status);
    for (const char* key : {"net", "Net.port", "a", "", " net.port"}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(403, post(server.port(), setMessage(key, "1")).status);
    }
    EXPECT_NE(std::string::npos, get(server.port(), "/options/net.port").body.find("\"1\""));
}

TEST(SettingOptions, AnEmptyPrefixAllowsAllKeys) {
    const ServerProcess server({"--writable", ""});
    EXPECT_EQ(200, post(server.port(), setMessage("a", "1")).status);
    EXPECT_EQ(200, post(server.port(), setMessage("", "1")).status);
}

TEST(SettingOptions, TheReplyForASecretIsAlwaysMasked) {
    const ServerProcess server({"--writable", "", "--secret", "*.user"},
                               {"-s", "db.password:int=17", "-s", "a.user=me"});
    const auto reply = [](const std::string& key) {
        return R"({"type":"connector/configuration/ConfigurationOptionResponse","message":{"key":")" +
               key + R"(","source":"","value":{"type":"string","value":"******"}}})" + "\n";
    };
    for (const char* key : {"db.password", "a.user", "new.token"}) {
        SCOPED_TRACE(key);
        const HttpResponse response = post(server.port(), setMessage(key, "hush"));
        EXPECT_EQ(200, response.status);
        EXPECT_EQ(reply(key), response.body);
        EXPECT_NE(std::string::npos,
                  post(server.port(), test::getMessage(key)).body.find(R"("value":"hush")"));
    }
}

TEST(SettingOptions, TheReplyContainsThePreviousValue) {
    const ServerProcess server({"--writable", ""}, {"-s", "db.user=me"});
    EXPECT_NE(std::string::npos,
              post(server.port(), setMessage("db.user", "you")).body.find(R"("value":"me")"));
}

TEST(SettingOptions, TheRefusalContainsTheWholeKeyEvenWithANulCharacter) {
    const ServerProcess server;
    expectRefusal(std::string("Key must not be set: a\0b (--writable PREFIX would allow it)", 59),
                  post(server.port(), setMessage("a\\u0000b", "1")));
}

/// A property root, and a file outside it.
class AddingFiles : public testing::Test {
protected:
    AddingFiles() {
        fs::create_directories(base.path / "root");
        fs::create_directories(base.path / "rooted");
        inside = base.write("root/a.properties", "a=1\n").string();
        outside = base.write("rooted/b.properties", "b=1\n").string();
    }

    void expectNotFound(const std::string& path, std::uint16_t port) const {
        SCOPED_TRACE(path);
        expectRefusal("Not a readable regular file below the directory of --property-root: " + path,
                      post(port, addMessage("n", path)));
    }

    std::vector<std::string> withRoot() const {
        return {"--property-root", (base.path / "root").string()};
    }

    const test::TemporaryDirectory base;
    std::string inside;
    std::string outside;
};

TEST_F(AddingFiles, IsRefusedWithoutAPropertyRoot) {
    const ServerProcess server;
    expectRefusal("Files must not be added (--property-root DIR would allow it)",
                  post(server.port(), addMessage("n", inside)));
}

TEST_F(AddingFiles, AcceptsFilesBelowTheRoot) {
    const ServerProcess server(withRoot());
    const HttpResponse response = post(server.port(), addMessage("n", inside));
    EXPECT_EQ(200, response.status);
    EXPECT_EQ("{\"type\":\"connector/Message\",\"message\":{}}\n", response.body);
    EXPECT_EQ("{\"key\":\"a\",\"source\":\"n\",\"value\":{\"type\":\"string\",\"value\":\"1\"}}\n",
              get(server.port(), "/options/a").body);
}

TEST_F(AddingFiles, ResolvesRelativePathsInTheServersWorkingDirectory) {
    const std::string relative = fs::relative(inside).string();
    const ServerProcess server(withRoot());
    EXPECT_EQ(200, post(server.port(), addMessage("n", relative)).status);
    EXPECT_EQ(200, get(server.port(), "/options/a").status);
    expectNotFound("a.properties", server.port());
}

TEST_F(AddingFiles, MasksSecretsInTheTrace) {
    base.write("root/s.properties", "user=hush\npassword=hush\nb=1\n");
    std::vector<std::string> arguments = withRoot();
    arguments.insert(arguments.end(), {"--secret", "*.USER"});
    ServerProcess server(arguments, {"--trace"});
    const std::string path = (base.path / "root/s.properties").string();
    EXPECT_EQ(200, post(server.port(),
                        R"({"type":"connector/configuration/AddPropertyFileSource","message":)"
                        R"({"name":"n","group":"db","path":")" +
                            path + "\"}}")
                       .status);
    const std::string errors = server.stop().errors;
    EXPECT_NE(errors.npos, errors.find("Parsed property: user = ******\n")) << errors;
    EXPECT_NE(errors.npos, errors.find("Parsed property: password = ******\n")) << errors;
    EXPECT_NE(errors.npos, errors.find("b = 1\n")) << errors;
    EXPECT_EQ(errors.npos, errors.find("hush")) << errors;
}

TEST_F(AddingFiles, RefusesFilesOutsideTheRoot) {
    const ServerProcess server(withRoot());
    const std::string root = (base.path / "root").string();
    fs::create_symlink(outside, root + "/link");
    fs::create_symlink(base.path / "rooted", root + "/folder");
    for (const std::string& path :
         {outside, root + "/../rooted/b.properties", root + "/link", root + "/folder/b.properties",
          root, root + "/none", std::string("/etc/passwd"), std::string("/dev/zero"),
          std::string()})
        expectNotFound(path, server.port());
    EXPECT_EQ("[]\n", get(server.port(), "/options").body);
}

TEST_F(AddingFiles, RefusesFilesLargerThan64MiB) {
    const ServerProcess server(withRoot());
    for (const std::uintmax_t size :
         {std::uintmax_t(64 * 1024 * 1024 + 1), std::uintmax_t(64) << 30}) {
        fs::resize_file(inside, size); // sparse, but its length counts
        const HttpResponse response = post(server.port(), addMessage("n", inside));
        EXPECT_EQ(413, response.status);
        EXPECT_EQ("Property file is larger than 64 MiB: " + inside, errorOf(response.body));
    }
    EXPECT_EQ("[]\n", get(server.port(), "/options").body);
}

/// @return a message that adds a file as "n", with more members
std::string addMessageWith(const std::string& members, const std::string& path) {
    return R"({"type":"connector/configuration/AddPropertyFileSource","message":{"name":"n","path":")" +
           path + "\"," + members + "}}";
}

TEST_F(AddingFiles, RefusesOrdersBelowOne) {
    const ServerProcess server(withRoot(), {"-s", "a=0"});
    for (const char* order : {"-1", "0", "-2147483648"}) {
        SCOPED_TRACE(order);
        expectRefusal(
            std::string("Order of a file must be at least 1: ") + order,
            post(server.port(), addMessageWith(std::string("\"order\":") + order, inside)));
    }
    expectRefusal("Order of a file must be at least 1: 0", // text that does not convert reads as 0
                  post(server.port(), addMessageWith(R"("order":"x")", inside)));
    EXPECT_EQ(200, post(server.port(), addMessageWith(R"("order":1)", inside)).status);
    EXPECT_NE(std::string::npos, get(server.port(), "/options/a").body.find("override"));
}

TEST_F(AddingFiles, AMissingOrderIs100) {
    const std::string after = base.write("rooted/c.properties", "c=1\n").string();
    base.write("root/a.properties", "b=2\nc=2\n");
    for (const char* members : {R"("group":"")", R"("order":null)"}) {
        SCOPED_TRACE(members);
        const ServerProcess server(withRoot(), {"-f", "path=" + outside + ",name=before,order=99",
                                                "-f", "path=" + after + ",name=after,order=101"});
        EXPECT_EQ(200, post(server.port(), addMessageWith(members, inside)).status);
        EXPECT_NE(std::string::npos, get(server.port(), "/options/b").body.find("\"before\""));
        EXPECT_NE(std::string::npos, get(server.port(), "/options/c").body.find("\"n\""));
    }
}

TEST_F(AddingFiles, AddsThemReadOnlyWhateverTheMessageSays) {
    std::vector<std::string> arguments = withRoot();
    arguments.insert(arguments.end(), {"--writable", ""});
    const ServerProcess server(arguments, {"-s", "b=0"});
    EXPECT_EQ(200,
              post(server.port(), addMessageWith(R"("order":1,"readOnly":false)", inside)).status);
    EXPECT_EQ(200, post(server.port(), setMessage("a", "2")).status);
    EXPECT_EQ(200, post(server.port(), setMessage("b", "2")).status);
}

TEST_F(AddingFiles, RefusesAPipeWithoutBlocking) {
    const ServerProcess server(withRoot());
    const std::string pipe = (base.path / "root/pipe").string();
    ASSERT_EQ(0, ::mkfifo(pipe.c_str(), 0600));
    fs::create_symlink(pipe, base.path / "root/link");
    expectNotFound(pipe, server.port());
    expectNotFound((base.path / "root/link").string(), server.port());
}

TEST_F(AddingFiles, RefusesPathsWithANulCharacter) {
    const ServerProcess server(withRoot());
    expectRefusal("Not a readable regular file below the directory of --property-root: " + inside +
                      std::string(1, '\0') + "x",
                  post(server.port(), addMessage("n", inside + "\\u0000x")));
    EXPECT_EQ("[]\n", get(server.port(), "/options").body);
}

TEST_F(AddingFiles, ReportsAnExistingNameWithStatus422) {
    const ServerProcess server(withRoot());
    const HttpResponse response = post(server.port(), addMessage("default", inside));
    EXPECT_EQ(422, response.status);
    EXPECT_EQ("Source with the requested name already exists: default", errorOf(response.body));
}

TEST_F(AddingFiles, DoesNotImplyPermissionToSet) {
    const ServerProcess server(withRoot());
    EXPECT_EQ(403, post(server.port(), setMessage("a", "1")).status);
}

} // namespace
