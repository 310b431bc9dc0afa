#include "arguments/FileArgument.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;
using connector::sources::FileFormat;

TEST(FileArgument, AcceptsPlainPathsAndTheLongForm) {
    const struct {
        int line;
        const char* text;
        FileArgument file;
    } rows[] = {
        {__LINE__, "a.properties", {"a.properties", "a.properties", "", 100}},
        {__LINE__, "", {"", "", "", 100}},
        {__LINE__, "a,name=b", {"a,name=b", "a,name=b", "", 100}},
        {__LINE__, "name=b,path=a", {"name=b,path=a", "name=b,path=a", "", 100}},
        {__LINE__, "./path=a", {"./path=a", "./path=a", "", 100}},
        {__LINE__, "Path=a", {"Path=a", "Path=a", "", 100}},
        {__LINE__, "path=a", {"a", "a", "", 100}},
        {__LINE__, "path=path=a", {"path=a", "path=a", "", 100}},
        {__LINE__, "path=", {"", "", "", 100}},
        {__LINE__, "path=a=b,name=c=d,group=e=f", {"a=b", "c=d", "e=f", 100}},
        {__LINE__, "path=a,name=,group=", {"a", "", "", 100}},
        {__LINE__, "path=a,order=-2147483648", {"a", "a", "", -2147483647 - 1}},
        {__LINE__, "path=a,order=2147483647,name=b", {"a", "b", "", 2147483647}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        const FileArgument file = parseFileArgument(row.text);
        EXPECT_EQ(row.file.path, file.path);
        EXPECT_EQ(row.file.name, file.name);
        EXPECT_EQ(row.file.group, file.group);
        EXPECT_EQ(row.file.order, file.order);
    }
}

TEST(FileArgument, TheExtensionNamesTheFormatUnlessAMemberDoes) {
    const struct {
        int line;
        const char* text;
        FileFormat format;
    } rows[] = {
        {__LINE__, "a.properties", FileFormat::Properties},
        {__LINE__, "a.json", FileFormat::Json},
        {__LINE__, "a.YAML", FileFormat::Yaml},
        {__LINE__, "path=a.yml", FileFormat::Yaml},
        {__LINE__, "path=a.toml,name=a.json", FileFormat::Toml},
        {__LINE__, "a.txt", FileFormat::Properties},
        {__LINE__, "", FileFormat::Properties},
        {__LINE__, "path=a", FileFormat::Properties},
        {__LINE__, "path=a,format=json", FileFormat::Json},
        {__LINE__, "path=a.json,format=properties", FileFormat::Properties},
        {__LINE__, "path=a.json,format=yaml", FileFormat::Yaml},
        {__LINE__, "path=a.json,format=toml", FileFormat::Toml},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.line);
        EXPECT_EQ(row.format, parseFileArgument(row.text).format);
    }
}

TEST(FileArgument, IsOptionalOnlyIfAMemberSaysSo) {
    EXPECT_FALSE(parseFileArgument("a").optional);
    EXPECT_FALSE(parseFileArgument("path=a").optional);
    EXPECT_FALSE(parseFileArgument("path=a,optional=false").optional);
    EXPECT_TRUE(parseFileArgument("path=a,optional=true").optional);
}

} // namespace
