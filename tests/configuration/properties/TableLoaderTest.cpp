/// The loader itself: when it stores properties, and how large it makes the table.

#include <connector/configuration/properties/StreamCursor.hpp>
#include <connector/configuration/properties/TableLoader.hpp>

#include <gtest/gtest.h>

#include <boost/variant/get.hpp>

#include <set>
#include <sstream>
#include <string>

namespace test {

namespace {

using connector::configuration::detail::OptionMap;
using connector::configuration::detail::StreamCursor;
using connector::configuration::detail::TableLoader;

/// A file whose lines are loaded one by one.
class LoadedFile {
public:
    LoadedFile(const std::string& text, std::streamoff size)
        : stream(text), loader(table, cursor, size) {}

    /// Consumes `length` characters and adds a property with a new key.
    void addLine(std::size_t length) {
        char c;
        for (std::size_t i = 0; i < length; ++i)
            cursor.next(c);
        loader.add(std::to_string(++lines), "value");
    }
    void addLines(int count, std::size_t length) {
        for (int i = 0; i < count; ++i)
            addLine(length);
    }

    OptionMap table;
    std::istringstream stream;
    StreamCursor cursor{stream};
    TableLoader loader;

private:
    int lines = 0;
};

constexpr std::size_t lineLength = 10;

} // namespace

TEST(TableLoader, StoresEverythingAtTheLatestInFlush) {
    LoadedFile file("", 0);
    for (int count = 1; count <= 40; ++count) {
        file.addLine(0);
        file.loader.flush();
        EXPECT_EQ(static_cast<std::size_t>(count), file.table.size());
    }
}

TEST(TableLoader, StoresTheLastValueOfAKey) {
    LoadedFile file("", 0);
    const std::string longer(100, 'x');
    for (const std::string& value : {std::string("first"), longer, std::string("last") + longer})
        file.loader.add("key", value);
    file.loader.flush();
    EXPECT_EQ("last" + longer, boost::get<std::string>(file.table.at("key")));
}

TEST(TableLoader, SizesTheTableForTheWholeFile) {
    for (const int lines : {100, 5000, 100000}) {
        const std::string text(static_cast<std::size_t>(lines) * lineLength, 'x');
        LoadedFile file(text, static_cast<std::streamoff>(text.size()));
        file.addLines(lines, lineLength);
        file.loader.finish();
        EXPECT_EQ(static_cast<std::size_t>(lines), file.table.size());
        EXPECT_LE(file.table.bucket_count(), file.table.size() * 6 / 5);
    }
}

TEST(TableLoader, LimitsItsExtrapolationFromFewLines) {
    const std::string text(16, 'x');
    LoadedFile file(text, std::streamoff(1) << 60);
    file.addLines(16, 1);
    EXPECT_EQ(16u, file.table.size());
    EXPECT_LE(file.table.bucket_count(), 20000u);
}

TEST(TableLoader, FreesTheMemoryOfLinesThatDidNotCome) {
    const std::string text(1000000, 'x');
    LoadedFile file(text, static_cast<std::streamoff>(text.size()));
    file.addLines(100, lineLength);
    EXPECT_GT(file.table.bucket_count(), 10000u);
    file.loader.finish();
    EXPECT_LE(file.table.bucket_count(), 200u);
}

TEST(TableLoader, RehashesSeldomWhenTheSizeIsUnknown) {
    for (const std::streamoff size : {-1, 0, 1, 500}) {
        LoadedFile file(std::string(50000, 'x'), size);
        std::set<std::size_t> bucketCounts;
        for (int line = 0; line < 5000; ++line) {
            file.addLine(lineLength);
            bucketCounts.insert(file.table.bucket_count());
        }
        file.loader.finish();
        EXPECT_EQ(5000u, file.table.size()) << size;
        EXPECT_LE(bucketCounts.size(), 13u) << size;
    }
}

} // namespace test
