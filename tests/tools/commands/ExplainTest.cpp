/// connector-config explain
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;

TEST(Explain, ListsSourcesInTheOrderOfConsultation) {
    const TemporaryFile site("net.port=9090\n");
    const TemporaryFile shipped("net.port=8080\nlog.level=info\n");
    EXPECT_EQ(
        (Result{0,
                "override  order 0                      does not have it\n"
                "site      order 100         read-only  supplies the value   9090\n"
                "shipped   order 200         read-only  is shadowed by site  8080\n"
                "default   order 2147483647             is shadowed by site  1\n"
                "set net.port would go to override and would take effect\n",
                ""}),
        runConnectorConfig({"-f", shipped.named("shipped", ",order=200"), "-f", site.named("site"),
                            "-d", "net.port:int=1", "explain", "net.port"}));
}

TEST(Explain, ASourceWithAGroupServesOnlyKeysOfTheGroup) {
    const TemporaryFile file("port=9090\n");
    const std::vector<std::string> sources = {"-f", file.named("net", ",group=net"), "explain"};
    std::vector<std::string> served = sources;
    served.push_back("net.port");
    std::vector<std::string> notServed = sources;
    notServed.push_back("network");
    EXPECT_EQ(
        (Result{0,
                "override  order 0                                  does not have it\n"
                "net       order 100         group net.  read-only  supplies the value  9090\n"
                "default   order 2147483647                         does not have it\n"
                "set net.port would go to override and would take effect\n",
                ""}),
        runConnectorConfig(served));
    EXPECT_EQ((Result{0,
                      "override  order 0                                  does not have it\n"
                      "net       order 100         group net.  read-only  does not serve this key\n"
                      "default   order 2147483647                         does not have it\n"
                      "set network would go to override and would take effect\n",
                      ""}),
              runConnectorConfig(notServed));
}

TEST(Explain, SucceedsIfNoSourceHasTheKey) {
    EXPECT_EQ((Result{0,
                      "override  order 0           does not have it\n"
                      "default   order 2147483647  does not have it\n"
                      "set k would go to override and would take effect\n",
                      ""}),
              runConnectorConfig({"explain", "k"}));
}

TEST(Explain, ANewValueStaysHiddenBehindAReadOnlySourceConsultedBeforeOverride) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ((Result{0,
                      "pinned    order -5          read-only  supplies the value  1\n"
                      "override  order 0                      does not have it\n"
                      "default   order 2147483647             does not have it\n"
                      "set k would go to override and would stay hidden behind pinned\n",
                      ""}),
              runConnectorConfig({"-f", file.named("pinned", ",order=-5"), "explain", "k"}));
}

TEST(Explain, ANewValueTakesEffectIfNoSourceConsultedBeforeOverrideHasTheKey) {
    const TemporaryFile file("other=1\n");
    EXPECT_EQ(
        (Result{0,
                "pinned    order 0           read-only  does not have it\n"
                "override  order 0                      does not have it\n"
                "default   order 2147483647             supplies the value  2\n"
                "set k would go to override and would take effect\n",
                ""}),
        runConnectorConfig({"-f", file.named("pinned", ",order=0"), "-d", "k=2", "explain", "k"}));
}

TEST(Explain, ANewValueTakesEffectIfOverrideSuppliesTheCurrentOne) {
    EXPECT_EQ((Result{0,
                      "override  order 0           supplies the value       [1]\n"
                      "default   order 2147483647  is shadowed by override  2\n"
                      "set k would go to override and would take effect\n",
                      ""}),
              runConnectorConfig({"-s", "k:intArray=[1]", "-d", "k=2", "explain", "k"}));
}

TEST(Explain, EscapesControlCharacters) {
    const TemporaryFile file("k\x07=v\x1b\n");
    EXPECT_EQ((Result{0,
                      "a\\nb      order -1          read-only  supplies the value   v\\x1b\n"
                      "override  order 0                      does not have it\n"
                      "default   order 2147483647             is shadowed by a\\nb  w\\t\n"
                      "set k\\x07 would go to override and would stay hidden behind a\\nb\n",
                      ""}),
              runConnectorConfig(
                  {"-f", file.named("a\nb", ",order=-1"), "-d", "k\x07=w\t", "explain", "k\x07"}));
}

TEST(ExplainJson, HasAnObjectForEachSource) {
    const TemporaryFile file("port=9090\n");
    const TemporaryFile other("x=1\n");
    EXPECT_EQ((Result{0,
                      R"({"key":"net.port","sources":[)"
                      R"({"name":"net","order":-1,"group":"net.","readOnly":true,)"
                      R"("verdict":"supplies the value","value":{"type":"string","value":"9090"}},)"
                      R"({"name":"override","order":0,"group":"","readOnly":false,)"
                      R"("verdict":"does not have it"},)"
                      R"({"name":"log","order":100,"group":"log.","readOnly":true,)"
                      R"("verdict":"does not serve this key"},)"
                      R"({"name":"default","order":2147483647,"group":"","readOnly":false,)"
                      R"("verdict":"is shadowed by net","value":{"type":"uint","value":1}}],)"
                      R"("set":{"source":"override","verdict":"would stay hidden behind net"}})"
                      "\n",
                      ""}),
              runConnectorConfig({"-f", file.named("net", ",group=net,order=-1"), "-f",
                                  other.named("log", ",group=log."), "-d", "net.port:uint=1",
                                  "explain", "net.port", "--json"}));
}

TEST(ExplainJson, SucceedsIfNoSourceHasTheKey) {
    EXPECT_EQ((Result{0,
                      R"({"key":"k\n","sources":[)"
                      R"({"name":"override","order":0,"group":"","readOnly":false,)"
                      R"("verdict":"does not have it"},)"
                      R"({"name":"default","order":2147483647,"group":"","readOnly":false,)"
                      R"("verdict":"does not have it"}],)"
                      R"("set":{"source":"override","verdict":"would take effect"}})"
                      "\n",
                      ""}),
              runConnectorConfig({"--json", "explain", "k\n"}));
}

} // namespace
