/// connector-config plan
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::usageError;

using Arguments = std::vector<std::string>;

class PlanCommand : public testing::Test {
protected:
    /// Runs plan on the file.
    Result plan(const Arguments& change) const {
        Arguments arguments{"-f", "path=" + site + ",name=site", "-d", "net.host=local", "plan"};
        arguments.insert(arguments.end(), change.begin(), change.end());
        return runConnectorConfig(arguments);
    }

    const test::TemporaryDirectory directory;
    const std::string site = directory.write("site", "net.port=80\nnet.host=h\n");
};

TEST_F(PlanCommand, OfSetShowsTheOptionBeforeAndAfter) {
    EXPECT_EQ((Result{0,
                      "   KEY       TYPE    VALUE  SOURCE\n"
                      "-  net.port  string  80     site\n"
                      "+  net.port  int     8080   override\n",
                      ""}),
              plan({"set", "net.port:int=8080"}));
    EXPECT_EQ((Result{0,
                      "   KEY  TYPE    VALUE  SOURCE\n"
                      "+  new  string  x y    default\n",
                      ""}),
              plan({"set", "new=x y", "@default"}));
}

TEST_F(PlanCommand, OfSetTellsBehindWhatItStaysHidden) {
    EXPECT_EQ((Result{0,
                      "KEY       TYPE    VALUE  SOURCE\n"
                      "net.port  string  1      default  stays hidden behind site\n"
                      "nothing would change\n",
                      ""}),
              plan({"set", "net.port=1", "@default"}));
}

TEST_F(PlanCommand, OfSetFailsAsSetDoes) {
    EXPECT_EQ(
        (Result{1, "", "connector-config: Source not found or not writable: net.port, site\n"}),
        plan({"set", "net.port=1", "@site"}));
}

TEST_F(PlanCommand, OfSetWarnsOfAnUnknownType) {
    EXPECT_EQ((Result{0,
                      "   KEY   TYPE    VALUE  SOURCE\n"
                      "+  a:in  string  1      override\n",
                      "connector-config: Warning: unknown type, taken as part of the key: a:in\n"}),
              plan({"set", "a:in=1"}));
}

TEST_F(PlanCommand, OfAnAddedFileShowsChangesAndHiddenValues) {
    const std::string more = directory.write("more.yaml", "net: {host: x, port: 1, new: 2}");
    EXPECT_EQ((Result{0,
                      "   KEY       TYPE    VALUE  SOURCE\n"
                      "+  net.new   int     2      more\n"
                      "   net.host  string  x      more    stays hidden behind site\n"
                      "   net.port  int     1      more    stays hidden behind site\n",
                      ""}),
              plan({"add", "path=" + more + ",name=more,order=101"}));
    EXPECT_EQ(
        (Result{1, "", "connector-config: Source with the requested name already exists: site\n"}),
        plan({"add", "path=" + more + ",name=site"}));
    EXPECT_EQ((Result{1, "", "connector-config: Property file could not be opened: /no/such\n"}),
              plan({"add", "/no/such"}));
}

TEST_F(PlanCommand, OfARemovedSourceTellsWhatIsGone) {
    EXPECT_EQ((Result{0,
                      "   KEY       TYPE    VALUE  SOURCE\n"
                      "-  net.host  string  h      site\n"
                      "+  net.host  string  local  default\n"
                      "-  net.port  string  80     site     gone, and watchers are not notified\n",
                      ""}),
              plan({"remove", "site"}));
    EXPECT_EQ((Result{1, "", "connector-config: No source with that name: x\n"}),
              plan({"remove", "x"}));
}

TEST_F(PlanCommand, OfARemovedSourceWithAGroupTellsThatNobodyIsTold) {
    EXPECT_EQ((Result{0,
                      "   KEY         TYPE    VALUE  SOURCE\n"
                      "-  g.net.host  string  h      site     gone, and watchers are not notified\n"
                      "-  g.net.port  string  80     site\n"
                      "+  g.net.port  string  1      default  watchers are not notified\n",
                      ""}),
              runConnectorConfig({"-f", "path=" + site + ",name=site,group=g", "-d", "g.net.port=1",
                                  "plan", "remove", "site"}));
}

TEST_F(PlanCommand, WritesADocument) {
    EXPECT_EQ((Result{0,
                      R"({"changes":[)"
                      R"({"key":"net.host","change":"changed",)"
                      R"("before":{"source":"site","value":{"type":"string","value":"h"}},)"
                      R"("after":{"source":"default","value":{"type":"string","value":"local"}},)"
                      R"("announced":true},)"
                      R"({"key":"net.port","change":"removed",)"
                      R"("before":{"source":"site","value":{"type":"string","value":"80"}},)"
                      R"("announced":false}],"hidden":[],"gone":["net.port"],"masked":[]})"
                      "\n",
                      ""}),
              plan({"--json", "remove", "site"}));
    EXPECT_EQ((Result{0,
                      R"({"changes":[],"hidden":[{"key":"net.port","source":"default",)"
                      R"("value":{"type":"int","value":1},"behind":"site"}],"gone":[],)"
                      R"("masked":[]})"
                      "\n",
                      ""}),
              plan({"set", "net.port:int=1", "@default", "--json"}));
}

TEST_F(PlanCommand, MasksSecrets) {
    for (const char* form : {"--secret", "--json"}) {
        const Arguments option =
            std::string(form) == "--json" ? Arguments{form} : Arguments{form, "x"};
        for (const char* source : {"@override", "@default"}) {
            Arguments arguments{"-s",  "db.password=hush", "plan",
                                "set", "db.password=more", source};
            arguments.insert(arguments.end(), option.begin(), option.end());
            const Result result = runConnectorConfig(arguments);
            EXPECT_EQ(0, result.status);
            EXPECT_EQ(result.output.npos, result.output.find("hush")) << result.output;
            EXPECT_EQ(result.output.npos, result.output.find("more")) << result.output;
            EXPECT_NE(result.output.npos, result.output.find("******")) << result.output;
        }
    }
}

TEST_F(PlanCommand, OfAReloadReplacesTheSourcesOfASnapshot) {
    const std::string named = "path=" + site + ",name=site,group=g";
    const std::string snapshot = directory.write(
        "snapshot", runConnectorConfig({"-f", named, "-s", "g.net.port=81", "snapshot"}).output);
    EXPECT_EQ((Result{0, "nothing would change\n", ""}),
              runConnectorConfig({"--snapshot", snapshot, "-f", named, "plan", "reload"}));
    directory.write("site", "net.port=82\nnew=1\n");
    EXPECT_EQ((Result{0,
                      "   KEY         TYPE    VALUE  SOURCE\n"
                      "-  g.net.host  string  h      site    gone, and watchers are not notified\n"
                      "+  g.new       string  1      site\n"
                      "   g.net.port  string  82     site    stays hidden behind override\n",
                      ""}),
              runConnectorConfig({"--snapshot", snapshot, "-f", named, "plan", "reload"}));
    EXPECT_EQ((Result{1, "", "connector-config: No source with that name: " + site + "\n"}),
              runConnectorConfig({"--snapshot", snapshot, "-f", site, "plan", "reload"}));
}

TEST_F(PlanCommand, OfAReloadDoesNotCompareMaskedValues) {
    const std::string file = directory.write("f", "password=1\n");
    const std::string named = "path=" + file + ",name=f";
    const std::string snapshot =
        directory.write("snapshot", runConnectorConfig({"-f", named, "snapshot"}).output);
    EXPECT_EQ((Result{0, "",
                      "connector-config: Not compared, because the values are masked: password\n"}),
              runConnectorConfig({"--snapshot", snapshot, "-f", named, "plan", "reload"}));
}

TEST_F(PlanCommand, OfAReloadReportsFilesThatCannotBeReadAndPlansTheOthers) {
    const std::string snapshot =
        directory.write("snapshot", runConnectorConfig({"-f", "path=" + site + ",name=a", "-f",
                                                        "path=" + site + ",name=b", "snapshot"})
                                        .output);
    const std::string other = directory.write("b", "net.port=81\nnet.host=h\n");
    const Result result =
        runConnectorConfig({"--snapshot", snapshot, "-f", "path=/no/such,name=a,optional=true",
                            "-f", "path=" + other + ",name=b", "plan", "reload"});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("   KEY       TYPE    VALUE  SOURCE\n"
              "-  net.port  string  80     b\n"
              "+  net.port  string  81     b\n",
              result.output);
    EXPECT_NE(std::string::npos, result.errors.find("/no/such")) << result.errors;
}

TEST_F(PlanCommand, OfAReloadReadsEachFileOnce) {
    EXPECT_EQ((Result{0, "nothing would change\n", ""}), plan({"reload"}));
    EXPECT_EQ((Result{0, "nothing would change\n", ""}),
              runConnectorConfig({"-f", "/dev/stdin", "plan", "reload"}, "a=1\n"));
    EXPECT_EQ((Result{2, "", usageError("plan reload requires --file")}),
              runConnectorConfig({"plan", "reload"}));
    EXPECT_EQ((Result{2, "", usageError("plan reload requires --file")}),
              runConnectorConfig({"plan", "--", "reload"}));
}

TEST_F(PlanCommand, RefusesOtherArguments) {
    EXPECT_EQ((Result{2, "",
                      usageError("plan requires set KEY[:TYPE]=VALUE [@SOURCE], add FILE, remove "
                                 "NAME or reload")}),
              plan({"quit"}));
    EXPECT_EQ((Result{2, "", usageError("--url excludes plan")}),
              runConnectorConfig({"--url", "unix:x", "plan", "remove", "y"}));
}

} // namespace
