/// The arguments of --etcd and fleet. None of these commands connects.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

using Arguments = std::vector<std::string>;

const std::string etcd = "endpoint=http://127.0.0.1:1,prefix=p";

TEST(FleetArguments, AreCheckedAtOnce) {
    const struct {
        int line;
        Arguments arguments;
        const char* message;
    } rows[] = {
        {__LINE__, {"fleet"}, "fleet requires put, delete, import, export or status"},
        {__LINE__, {"fleet", "get"}, "Unknown command: fleet get"},
        {__LINE__, {"fleet", "status"}, "fleet requires exactly one --etcd"},
        {__LINE__,
         {"--etcd", etcd, "fleet", "export", "--etcd", etcd + ",name=n"},
         "fleet requires exactly one --etcd"},
        {__LINE__, {"--etcd", etcd, "-s", "a=1", "fleet", "export"}, "fleet excludes --set"},
        {__LINE__, {"--etcd", etcd, "-d", "a=1", "fleet", "export"}, "fleet excludes --default"},
        {__LINE__, {"--etcd", etcd, "-f", "f", "fleet", "export"}, "fleet excludes --file"},
        {__LINE__, {"--etcd", etcd, "--env", "E", "fleet", "export"}, "fleet excludes --env"},
        {__LINE__, {"--etcd", etcd, "check", "f"}, "check excludes --etcd"},
        {__LINE__, {"--etcd", etcd, "fleet", "put"}, "KEY[:TYPE]=VALUE is required"},
        {__LINE__, {"--etcd", etcd, "fleet", "put", "a"}, "Not of the form KEY[:TYPE]=VALUE: a"},
        {__LINE__, {"--etcd", etcd, "fleet", "put", "=1"}, "Not of the form KEY[:TYPE]=VALUE: =1"},
        {__LINE__,
         {"--etcd", etcd, "fleet", "put", "a:int=x"},
         "Value of a does not convert to int: x"},
        {__LINE__,
         {"--etcd", etcd, "fleet", "put", "a.secret:int=x"},
         "Value of a.secret does not convert to int: ******"},
        {__LINE__, {"--etcd", etcd, "fleet", "put", "a=1", "a=1"}, "Key is put twice: a"},
        {__LINE__, {"--etcd", etcd, "fleet", "put", "\xFF=1"}, "A key is not valid UTF-8"},
        {__LINE__, {"--etcd", etcd, "fleet", "put", "a=\xFF"}, "Text is not valid UTF-8"},
        {__LINE__, {"--etcd", etcd, "fleet", "delete"}, "KEY is required"},
        {__LINE__, {"--etcd", etcd, "fleet", "delete", ""}, "Key is empty"},
        {__LINE__, {"--etcd", etcd, "fleet", "delete", "\xFF"}, "A key is not valid UTF-8"},
        {__LINE__, {"--etcd", etcd, "fleet", "import"}, "FILE is required"},
        {__LINE__,
         {"--etcd", etcd, "fleet", "import", "path=a,name=b"},
         "Unknown member of FILE to import: name=b"},
        {__LINE__,
         {"--etcd", etcd, "fleet", "export", "--format=yaml"},
         "Format is neither json nor properties: yaml"},
        {__LINE__,
         {"--etcd", etcd, "--json", "fleet", "export", "--format=properties"},
         "--json excludes --format=properties"},
        {__LINE__,
         {"--etcd", "endpoint=http://127.0.0.1:1,prefix=", "keys"},
         "Member of --etcd is empty: prefix"},
        {__LINE__,
         {"--etcd", "endpoint=http://a b:1,prefix=p", "keys"},
         "Not of the form http://HOST:PORT or https://HOST:PORT: http://a b:1"},
        {__LINE__,
         {"--etcd", "endpoint=http://[.]:1,prefix=p", "keys"},
         "Not an endpoint: http://[.]:1"},
        {__LINE__,
         {"--etcd", "endpoint=http://[.]:1,prefix=p", "fleet", "status"},
         "Not an endpoint: http://[.]:1"},
        {__LINE__, {"--url", "unix:x", "--etcd", etcd, "keys"}, "--url excludes --etcd"},
        {__LINE__, {"--url", "unix:x", "--etcd", etcd, "fleet", "status"}, "--url excludes --etcd"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}), runConnectorConfig(row.arguments));
    }
}

TEST(FleetArguments, HaveAtMost128Operations) {
    Arguments put{"--etcd", etcd, "fleet", "put"};
    Arguments erase{"--etcd", etcd, "fleet", "delete"};
    for (int i = 0; i < 129; ++i) {
        put.push_back("key" + std::to_string(i) + "=1");
        erase.push_back("key" + std::to_string(i));
    }
    const Result expected{2, "", usageError("A transaction has at most 128 operations, not 129")};
    EXPECT_EQ(expected, runConnectorConfig(put));
    EXPECT_EQ(expected, runConnectorConfig(erase));
}

TEST(FleetArguments, AreInTheHelp) {
    const std::string help = runConnectorConfig({"--help"}).output;
    for (const char* text :
         {"\n      --etcd endpoint=URL[,endpoint=URL...],prefix=P",
          "\n  fleet put KEY[:TYPE]=VALUE...", "\n  fleet delete KEY...", "\n  fleet import FILE",
          "\n      --delete", "\n      --dry-run", "\n  fleet export",
          "\n      --format=json|properties", "\n  fleet status", " fleet put a=1\n"})
        EXPECT_NE(std::string::npos, help.find(text)) << text;
    EXPECT_EQ(help, runConnectorConfig({"fleet", "put", "--help"}).output);
}

} // namespace
