/// fleet import
#include "Fleet.hpp"

#include "support/TemporaryDirectory.hpp"

namespace {

using test::Result;

using Texts = std::map<std::string, std::string>;

class ImportTest : public test::Fleet {
protected:
    std::string file(const std::string& name, const std::string& content) const {
        return folder.write(name, content).string();
    }

    /// A property file with keys "key.0000" and so on.
    std::string manyKeys(int count, const std::string& value = "1") const {
        std::string lines;
        for (int i = 0; i < count; ++i)
            lines += key(i) + '=' + value + '\n';
        return file("many.properties", lines);
    }

    static std::string key(int number) {
        const std::string digits = std::to_string(number);
        return "key." + std::string(4 - digits.size(), '0') + digits;
    }

    const test::TemporaryDirectory folder;
};

TEST_F(ImportTest, PrintsAndWritesWhatChanges) {
    put("changed", "old");
    put("other", "stays");
    put("same", "1");
    const std::int64_t before = put("type", R"({"type":"int","value":1})");
    const std::string path = file("f.properties", "same=1\nnew\\ key=2\nchanged=new\ntype=1\n");
    const Result expected{0, "~ changed\n+ new key\n~ type\n", ""};
    EXPECT_EQ(expected, fleet({"import", path, "--dry-run"}));
    EXPECT_EQ(before, client.list("fleet/").revision);
    EXPECT_EQ(expected, fleet({"import", path}));
    EXPECT_EQ(before + 1, client.list("fleet/").revision);
    EXPECT_EQ((Texts{{"changed", "new"},
                     {"new key", "2"},
                     {"other", "stays"},
                     {"same", "1"},
                     {"type", "1"}}),
              texts());
    EXPECT_EQ((Result{0, "", ""}), fleet({"import", path}));
    EXPECT_EQ(before + 1, client.list("fleet/").revision);
}

TEST_F(ImportTest, DeletesOtherKeysIfItIsTold) {
    put("b", "1");
    put("a", "1");
    put("unreadable", "\xFF");
    const std::string path = file("f.properties", "b=2\nc=3\n");
    const Result expected{0, "- a\n~ b\n+ c\n- unreadable\n", ""};
    EXPECT_EQ(expected, fleet({"import", "--delete", "--dry-run", path}));
    EXPECT_EQ(expected, fleet({"import", "--delete", path}));
    EXPECT_EQ((Texts{{"b", "2"}, {"c", "3"}}), texts());
}

TEST_F(ImportTest, WritesOverAValueThatCannotBeRead) {
    put("a", R"({"type":"int"})");
    EXPECT_EQ((Result{0, "~ a\n", ""}), fleet({"import", file("f.properties", "a=1\n")}));
    EXPECT_EQ((Texts{{"a", "1"}}), texts());
}

TEST_F(ImportTest, TakesEveryFormat) {
    EXPECT_EQ((Result{0, "+ j.n\n", ""}), fleet({"import", file("f.json", R"({"j":{"n":1}})")}));
    EXPECT_EQ((Result{0, "+ y.n\n", ""}), fleet({"import", file("f.yaml", "y: {n: 2}\n")}));
    EXPECT_EQ((Result{0, "+ t.n\n", ""}), fleet({"import", file("f.toml", "t.n = 3\n")}));
    EXPECT_EQ((Result{0, "+ p.n\n", ""}), fleet({"import", file("f.conf", "p.n=4\n")}));
    EXPECT_EQ((Result{0, "+ z.n\n", ""}),
              fleet({"import", "path=" + file("z.conf", "{z: {n: 5}}") + ",format=yaml"}));
    EXPECT_EQ((Texts{{"j.n", R"({"type":"int","value":1})"},
                     {"y.n", R"({"type":"int","value":2})"},
                     {"t.n", R"({"type":"int","value":3})"},
                     {"p.n", "4"},
                     {"z.n", R"({"type":"int","value":5})"}}),
              texts());
}

TEST_F(ImportTest, TakesAnExportWithAllTypes) {
    fleet({"put", "b:bool=true", "i:int=-1", "u:uint=1", "d:double=0.1", "us:ustring=grün", "s=1",
           "ba:boolArray=[true]", "ia:intArray=[]", "ua:uintArray=[1]", "da:doubleArray=[1e300]",
           R"(sa:stringArray=["x"])", R"(usa:ustringArray=["y"])"});
    put("infinite", R"({"type":"double","value":"-inf"})");
    put("nan", R"({"type":"double","value":"nan"})");
    const Texts before = texts();
    const std::string path = file("export.json", fleet({"export"}).output);
    EXPECT_EQ((Result{0, "", ""}), fleet({"import", path, "--delete"}));
    test::Arguments erase{"delete"};
    for (const auto& entry : before)
        erase.push_back(entry.first);
    EXPECT_EQ((Result{0, "14\n", ""}), fleet(erase));
    EXPECT_EQ(0, fleet({"import", path}).status);
    EXPECT_EQ(before, texts());
}

TEST_F(ImportTest, TakesAnExportFromAPipe) {
    const test::Arguments command{"--etcd", etcd(), "fleet", "import",
                                  "path=/dev/stdin,format=json"};
    EXPECT_EQ((Result{0, "+ a\n", ""}),
              test::runConnectorConfig(command, R"({"options":{"a":{"type":"int","value":1}}})"));
    EXPECT_EQ((Result{1, "",
                      "connector-config: Neither a regular file nor what fleet export writes: "
                      "/dev/stdin\n"}),
              test::runConnectorConfig(command, R"({"a":1})"));
}

TEST_F(ImportTest, ChangesNothingIfTheFileHasWhatNoKeyCanHold) {
    const struct {
        int line;
        std::string name;
        std::string content;
        std::string failure;
    } rows[] = {
        {__LINE__, "f.properties", "a=1\n=2\n", "A key is empty"},
        {__LINE__, "f.properties", "a=1\nb=\xFF\n", "Value is not valid UTF-8: b"},
        {__LINE__, "f.properties", "a=1\n\xFF=2\n", "Key is not valid UTF-8: \\xff"},
        {__LINE__, "f.json", R"({"options":{"a":{"type":"int","value":"x"}}})",
         "Value cannot be read: a"},
        {__LINE__, "f.json", R"({"options":{"":{"type":"int","value":1}}})", "A key is empty"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{1, "", "connector-config: " + row.failure + '\n'}),
                  fleet({"import", file(row.name, row.content)}));
    }
    for (const char* name : {"missing.properties", "missing.json"}) {
        const std::string path = (folder.path / name).string();
        const Result missing = fleet({"import", path});
        EXPECT_EQ(1, missing.status);
        EXPECT_NE(std::string::npos, missing.errors.find(path)) << missing.errors;
    }
    EXPECT_TRUE(texts().empty());
}

TEST_F(ImportTest, SaysThatItNeedsSeveralTransactions) {
    const Result one = fleet({"import", manyKeys(128)});
    EXPECT_EQ("", one.errors);
    EXPECT_EQ(2, client.list("fleet/").revision);
    const Result several = fleet({"import", manyKeys(300, "2")});
    EXPECT_EQ(0, several.status);
    EXPECT_EQ("300 changes are written in 3 transactions of at most 128\n", several.errors);
    EXPECT_EQ(5, client.list("fleet/").revision);
    EXPECT_EQ(300u, texts().size());
}

/// The program prints more than a pipe takes before it writes. So what happens between the first
/// line and the last one happens between its reading and its writing.
TEST_F(ImportTest, DoesNotOverwriteWhatSomebodyElseChangesMeanwhile) {
    constexpr int count = 9'000; // lines of 11 bytes
    test::Process import(
        test::connectorConfig({"--etcd", etcd(), "fleet", "import", manyKeys(count)}));
    EXPECT_EQ("+ key.0000", import.readLine());
    const std::int64_t revision = put(key(200), "somebody else's");
    const Result result = import.finish();
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("9000 changes are written in 71 transactions of at most 128\n"
              "connector-config: Conflict: key.0200 is at revision " +
                  std::to_string(revision) +
                  ", not 0; 128 of 9000 changes were written before it\n",
              result.errors);
    EXPECT_EQ(129u, texts().size());
    EXPECT_EQ("somebody else's", texts()[key(200)]);
    EXPECT_EQ(revision + 1, client.list("fleet/").revision);
}

TEST_F(ImportTest, DoesNotDeleteWhatSomebodyElseChangesMeanwhile) {
    constexpr int count = 9'000;
    put("a", "1");
    test::Process import(
        test::connectorConfig({"--etcd", etcd(), "fleet", "import", "--delete", manyKeys(count)}));
    EXPECT_EQ("- a", import.readLine());
    client.erase("fleet/a");
    const Result result = import.finish();
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos,
              result.errors.find("Conflict: a is at revision 0, not 2; 0 of 9001 changes"))
        << result.errors;
    EXPECT_TRUE(texts().empty());
}

TEST_F(ImportTest, SaysHowManyChangesWereWrittenWhenTheEngineGoesAway) {
    constexpr int count = 9'000;
    test::Process import(
        test::connectorConfig({"--etcd", etcd(), "fleet", "import", manyKeys(count)}));
    EXPECT_EQ("+ key.0000", import.readLine());
    server.kill();
    const Result result = import.finish();
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos,
              result.errors.find("connector-config: Not written: " + server.endpoint() + ": "))
        << result.errors;
    EXPECT_NE(std::string::npos, result.errors.find("; 0 of 9000 changes were written before it\n"))
        << result.errors;
}

} // namespace
