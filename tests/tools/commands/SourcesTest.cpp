/// The options that name sources: --file, --set and --default. See also EnvironmentTest.cpp and
/// FileFormatsTest.cpp.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Result;
using test::runConnectorConfig;
using test::TemporaryFile;
using test::usageError;

TEST(FileOption, APlainPathAddsASourceNamedAfterItWithoutAGroupAndWithOrder100) {
    const TemporaryFile file("k=1\n");
    const Result result = runConnectorConfig({"-f", file.path(), "--json", "explain", "k"});
    EXPECT_NE(std::string::npos, result.output.find(R"({"name":")" + file.path() +
                                                    R"(","order":100,"group":"","readOnly":true,)"))
        << result.output;
}

TEST(FileOption, TheLongFormWithOnlyAPathMeansTheSameAsThePath) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ(runConnectorConfig({"-f", file.path(), "explain", "k"}),
              runConnectorConfig({"--file", "path=" + file.path(), "explain", "k"}));
}

TEST(FileOption, MembersMayComeInAnyOrder) {
    const TemporaryFile file("k=1\n");
    const std::string expected =
        "n         order -7          group g.  read-only  supplies the value"
        "  1\n";
    for (const char* members :
         {",name=n,group=g,order=-7", ",order=-7,group=g.,name=n", ",group=g,order=-7,name=n"}) {
        SCOPED_TRACE(members);
        const Result result =
            runConnectorConfig({"-f", "path=" + file.path() + members, "explain", "g.k"});
        EXPECT_EQ(0u, result.output.find(expected)) << result.output;
    }
}

TEST(FileOption, APlainPathMayContainCommasAndEqualsSigns) {
    const std::string path = testing::TempDir() + "connector-config a,order=x,b=c";
    const TemporaryFile file("k=1\n");
    std::filesystem::copy_file(file.path(), path,
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ((Result{0, "1\n", ""}), runConnectorConfig({"-f", path, "get", "k"}));
    std::filesystem::remove(path);
}

TEST(FileOption, ThePathOfTheLongFormEndsAtTheFirstComma) {
    EXPECT_EQ((Result{1, "", "connector-config: Property file could not be opened: no\n"}),
              runConnectorConfig({"-f", "path=no,name=such,order=1", "keys"}));
}

TEST(FileOption, InvalidMembersAreUsageErrors) {
    const struct {
        int line;
        const char* file;
        const char* message;
    } rows[] = {
        {__LINE__, "path=a,colour=red", "Unknown member of FILE: colour=red"},
        {__LINE__, "path=a,name", "Unknown member of FILE: name"},
        {__LINE__, "path=a,", "Unknown member of FILE: "},
        {__LINE__, "path=a,Name=b", "Unknown member of FILE: Name=b"},
        {__LINE__, "path=a, name=b", "Unknown member of FILE:  name=b"},
        {__LINE__, "path=a,name=b,name=c", "Repeated member of FILE: name=c"},
        {__LINE__, "path=a,path=b", "Repeated member of FILE: path=b"},
        {__LINE__, "path=a,order=", "Order is not a 32-bit integer: "},
        {__LINE__, "path=a,order=ten", "Order is not a 32-bit integer: ten"},
        {__LINE__, "path=a,order=1.5", "Order is not a 32-bit integer: 1.5"},
        {__LINE__, "path=a,order=1 ", "Order is not a 32-bit integer: 1 "},
        {__LINE__, "path=a,order=2147483648", "Order is not a 32-bit integer: 2147483648"},
        {__LINE__, "path=a,order=-2147483649", "Order is not a 32-bit integer: -2147483649"},
        {__LINE__, "path=a,order=1,group=g,x=y", "Unknown member of FILE: x=y"},
        {__LINE__, "path=a,format=", "Format is neither properties, json, yaml nor toml: "},
        {__LINE__, "path=a,format=JSON", "Format is neither properties, json, yaml nor toml: JSON"},
        {__LINE__, "path=a,format=yml", "Format is neither properties, json, yaml nor toml: yml"},
        {__LINE__, "path=a,optional=yes", "Optional is neither true nor false: yes"},
        {__LINE__, "path=a,optional=", "Optional is neither true nor false: "},
        {__LINE__, "path=a,optional", "Unknown member of FILE: optional"},
        {__LINE__, "path=a,format=json,format=json", "Repeated member of FILE: format=json"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ((Result{2, "", usageError(row.message)}),
                  runConnectorConfig({"-f", row.file, "keys"}));
    }
}

TEST(FileOption, AcceptsTheSmallestAndTheLargestOrder) {
    const TemporaryFile file("k=1\n");
    for (const char* order : {",order=2147483647", ",order=-2147483648", ",order=0"}) {
        SCOPED_TRACE(order);
        EXPECT_EQ((Result{0, "1\n", ""}),
                  runConnectorConfig({"-f", file.named("n", order), "get", "k"}));
    }
}

TEST(FileOption, ReportsAMissingFileWithTheLibrarysText) {
    EXPECT_EQ(
        (Result{1, "", "connector-config: Property file could not be opened: /no/such\\nfile\n"}),
        runConnectorConfig({"-f", "/no/such\nfile", "keys"}));
}

TEST(FileOption, ReportsADirectoryWithTheLibrarysText) {
    EXPECT_EQ((Result{1, "", "connector-config: Property file could not be opened: /\n"}),
              runConnectorConfig({"-f", "/", "keys"}));
}

TEST(FileOption, ReportsAnEmptyPathWithTheLibrarysText) {
    EXPECT_EQ((Result{1, "", "connector-config: Property file could not be opened: \n"}),
              runConnectorConfig({"-f", "", "keys"}));
}

TEST(FileOption, NamesAPathThatIsNotUtf8InTheFailure) {
    EXPECT_EQ((Result{1, "", "connector-config: Path is not valid UTF-8: a\\xff\\n\n"}),
              runConnectorConfig({"-f", "a\xff\n", "keys"}));
}

TEST(FileOption, RejectsTheSameNameTwice) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ((Result{1, "",
                      "connector-config: Source with the requested name already exists: " +
                          file.path() + "\n"}),
              runConnectorConfig({"-f", file.path(), "-f", file.path(), "keys"}));
}

TEST(FileOption, RejectsTheNameOfABuiltInSource) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ(
        (Result{1, "",
                "connector-config: Source with the requested name already exists: override\n"}),
        runConnectorConfig({"-f", file.named("override"), "keys"}));
}

TEST(FileOption, OfFilesWithTheSameOrderTheLastOneIsConsultedFirst) {
    const TemporaryFile first("k=first\n");
    const TemporaryFile second("k=second\n");
    EXPECT_EQ((Result{0, "second\n", ""}),
              runConnectorConfig({"-f", first.path(), "get", "k", "-f", second.path()}));
}

TEST(FileOption, TakesOnlyOnePath) {
    const TemporaryFile file("k=1\n");
    EXPECT_EQ((Result{2, "", usageError("Unexpected argument: b")}),
              runConnectorConfig({"-f", file.path(), "b", "keys"}));
}

TEST(SetOption, SetsAValueInOverride) {
    EXPECT_EQ((Result{0,
                      R"({"key":"k","source":"override","value":{"type":"string","value":"v"}})"
                      "\n",
                      ""}),
              runConnectorConfig({"--set", "k=v", "get", "k", "--json"}));
}

TEST(SetOption, TheLastValueOfAKeyCounts) {
    EXPECT_EQ((Result{0, "2\n", ""}),
              runConnectorConfig({"-s", "k=1", "-s", "k:int=2", "get", "k"}));
}

TEST(DefaultOption, SetsAValueInDefault) {
    EXPECT_EQ((Result{0,
                      R"({"key":"k","source":"default","value":{"type":"string","value":"v"}})"
                      "\n",
                      ""}),
              runConnectorConfig({"--default", "k=v", "get", "k", "--json"}));
}

TEST(Sources, AreConsultedFromOverrideToDefault) {
    const TemporaryFile file("a=file\nb=file\n");
    EXPECT_EQ((Result{0,
                      "KEY  TYPE    VALUE     SOURCE\n"
                      "a    string  override  override\n"
                      "b    string  file      f\n"
                      "c    string  default   default\n",
                      ""}),
              runConnectorConfig({"-d", "a=default", "-d", "b=default", "-d", "c=default", "-f",
                                  file.named("f"), "-s", "a=override", "show"}));
}

TEST(Sources, AreAddedInTheOrderOfTheCommandLine) {
    const TemporaryFile file("f=1\n");
    const Result result = runConnectorConfig(
        {"--trace", "-d", "a=1", "-f", file.named("f"), "keys", "none", "-s", "b=1", "-d", "c=1"});
    std::string order;
    for (const char* step :
         {"set: a, default\n", "addSource: f, ", "set: b, override\n", "set: c, default\n"}) {
        const std::size_t position = result.errors.find(step);
        ASSERT_NE(std::string::npos, position) << step;
        EXPECT_GE(position, order.size()) << step;
        order.assign(position, ' ');
    }
}

TEST(Sources, UsageErrorsAreReportedBeforeFilesAreRead) {
    EXPECT_EQ((Result{2, "", usageError("Value of k does not convert to int: x")}),
              runConnectorConfig({"-f", "/no/such/file", "-s", "k:int=x", "keys"}));
}

/// @return the warning about an assignment
std::string unknownType(const std::string& key) {
    return "connector-config: Warning: unknown type, taken as part of the key: " + key + "\n";
}

TEST(Assignment, SeparatesKeyTypeAndValue) {
    const struct {
        int line;
        const char* assignment;
        const char* json;
        bool warns = false;
    } rows[] = {
        {__LINE__, "k=v",
         R"([{"key":"k","source":"override","value":{"type":"string","value":"v"}}])"},
        {__LINE__, "k=a=b",
         R"([{"key":"k","source":"override","value":{"type":"string","value":"a=b"}}])"},
        {__LINE__, "k=a:int=b",
         R"([{"key":"k","source":"override","value":{"type":"string","value":"a:int=b"}}])"},
        {__LINE__, "k:int=1",
         R"([{"key":"k","source":"override","value":{"type":"int","value":1}}])"},
        {__LINE__, "k:INT=1",
         R"([{"key":"k:INT","source":"override","value":{"type":"string","value":"1"}}])", true},
        {__LINE__, "k:integer=1",
         R"([{"key":"k:integer","source":"override","value":{"type":"string","value":"1"}}])",
         true},
        {__LINE__, "k: int=1",
         R"([{"key":"k: int","source":"override","value":{"type":"string","value":"1"}}])"},
        {__LINE__, "k:=1",
         R"([{"key":"k:","source":"override","value":{"type":"string","value":"1"}}])"},
        {__LINE__, "k:int:string=1",
         R"([{"key":"k:int","source":"override","value":{"type":"string","value":"1"}}])"},
        {__LINE__, "a:b:uint=1",
         R"([{"key":"a:b","source":"override","value":{"type":"uint","value":1}}])"},
        {__LINE__, "int=1",
         R"([{"key":"int","source":"override","value":{"type":"string","value":"1"}}])"},
        {__LINE__, "-k= v ",
         R"([{"key":"-k","source":"override","value":{"type":"string","value":" v "}}])"},
        {__LINE__, "[k]=[v]",
         R"([{"key":"[k]","source":"override","value":{"type":"string","value":"[v]"}}])"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const std::string key = row.assignment;
        const std::string warning =
            row.warns ? unknownType(key.substr(0, key.find('='))) : std::string();
        EXPECT_EQ((Result{0, std::string(row.json) + "\n", warning}),
                  runConnectorConfig({"-s", row.assignment, "show", "--json"}));
    }
}

TEST(Assignment, WarnsOfATypeThatIsUnknownButLooksLikeOne) {
    EXPECT_EQ((Result{0, "k:integer\nl:Bool\n", unknownType("k:integer") + unknownType("l:Bool")}),
              runConnectorConfig({"-s", "k:integer=1", "-d", "l:Bool=1", "keys"}));
    for (const char* key : {"k:1", "k:int8", "k:a b", "k:a.b", "k:\xC3\xA4", "k:"})
        EXPECT_EQ((Result{0, "1\n", ""}),
                  runConnectorConfig({"-s", std::string(key) + "=1", "get", key}));
}

TEST(Assignment, WarnsAtThePromptToo) {
    EXPECT_EQ((Result{0, "k:integer = 1  (override)\n",
                      "connector-config: No value yet: k:integer\n" + unknownType("k:integer")}),
              runConnectorConfig({"watch", "k:integer"}, "set k:integer=1\n"));
}

TEST(Assignment, RequiresAKeyAndAnEqualsSign) {
    for (const char* assignment : {"", "k", "k:int", "=v", ":int=5"}) {
        SCOPED_TRACE(assignment);
        const Result expected{
            2, "", usageError(std::string("Not of the form KEY[:TYPE]=VALUE: ") + assignment)};
        EXPECT_EQ(expected, runConnectorConfig({"-s", assignment, "keys"}));
        EXPECT_EQ(expected, runConnectorConfig({"-d", assignment, "keys"}));
    }
}

} // namespace
