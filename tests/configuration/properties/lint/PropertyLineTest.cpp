/// Writing properties.

#include <connector/configuration/properties/Lint.hpp>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace test {

using namespace connector::configuration::properties;

TEST(PropertyLine, IsReadAsTheKeyAndValueThatWereWritten) {
    const std::string texts[] = {"a",
                                 "",
                                 "a b",
                                 " leading",
                                 "trailing ",
                                 "=",
                                 ":",
                                 "#no comment",
                                 "!no comment",
                                 "back\\slash\\",
                                 "two\nlines\r\n",
                                 "\ttab\f",
                                 "gr\u00fcn \u4e2d \U0001F600",
                                 "\xEF\xBB\xBFmark",
                                 "\\u0041",
                                 std::string("nul\0byte", 8)};
    for (const std::string& key : texts) {
        for (const std::string& value : texts) {
            SCOPED_TRACE(testing::PrintToString(key) + " = " + testing::PrintToString(value));
            const std::string file = propertyLine(key, value) + '\n';
            const std::vector<PlacedProperty> properties = placedProperties(file);
            ASSERT_EQ(1u, properties.size()) << file;
            EXPECT_EQ(key, properties.front().key);
            EXPECT_EQ(value, properties.front().value);
            std::istringstream stream(file);
            for (const Finding& finding : lint(stream))
                EXPECT_FALSE(isDifference(finding.rule)) << finding.text;
        }
    }
}

} // namespace test
