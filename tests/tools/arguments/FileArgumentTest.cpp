#include "arguments/FileArgument.hpp"

#include <gtest/gtest.h>

namespace {

using namespace connector_config;

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

} // namespace
