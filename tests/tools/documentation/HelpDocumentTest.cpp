/// The help text, taken apart.
#include <documentation/HelpDocument.hpp>

#include <gtest/gtest.h>

namespace {

using connector_config::HelpDocument;
using connector_config::readHelp;
using connector_config::summaryOf;

const char text[] = R"(Usage: program COMMAND

Does one thing
and another.

Commands:
  get KEY...             the value; or nothing
      --plain            no quotes
  watch KEY              changes:
                           set KEY
                         until the end
  fleet put KEY          writes options
  fleet import FILE      reads a file
      --format=json|properties
  serve --http ADDRESS [OPTIONS]
                         answers requests

A long heading, which
goes on:
  -f, --file FILE        a file: of any format
      --url URL          an address

A last paragraph.

Examples:
  program get a
  program get b
)";

class HelpDocumentOfAProgram : public testing::Test {
protected:
    const HelpDocument help = readHelp(text);
};

TEST_F(HelpDocumentOfAProgram, HasParagraphsAndHeadings) {
    EXPECT_EQ("program COMMAND", help.usage);
    ASSERT_EQ(5u, help.blocks.size());
    EXPECT_EQ("Does one thing and another.", help.blocks[0].text);
    EXPECT_FALSE(help.blocks[0].isHeading);
    EXPECT_EQ("A long heading, which goes on", help.blocks[2].text);
    EXPECT_TRUE(help.blocks[2].isHeading);
    EXPECT_EQ("A last paragraph.", help.blocks[3].text);
    EXPECT_TRUE(help.blocks[4].isLiteral());
    EXPECT_FALSE(help.blocks[1].isLiteral());
}

TEST_F(HelpDocumentOfAProgram, HasTermsWithDescriptions) {
    const auto& commands = help.blocks[1].entries;
    ASSERT_EQ(7u, commands.size());
    EXPECT_EQ("get KEY...", commands[0].term);
    EXPECT_EQ("the value; or nothing", commands[0].text());
    EXPECT_EQ("changes: until the end", commands[2].text());
    EXPECT_TRUE(commands[2].description[1].isLiteral);
    EXPECT_EQ("answers requests", commands[6].text());
}

TEST_F(HelpDocumentOfAProgram, SummariesAreTheFirstClause) {
    EXPECT_EQ("the value", summaryOf(help, "get"));
    EXPECT_EQ("no quotes", summaryOf(help, "get", "--plain"));
    EXPECT_EQ("", summaryOf(help, "watch", "--plain"));
    EXPECT_EQ("a file", summaryOf(help, "", "--file"));
    EXPECT_EQ("a file", summaryOf(help, "", "-f"));
    EXPECT_EQ("answers requests", summaryOf(help, "serve", "--http"));
}

TEST_F(HelpDocumentOfAProgram, ACommandOfCommandsIsDescribedByThem) {
    EXPECT_EQ("put, import", summaryOf(help, "fleet"));
    EXPECT_EQ("writes options", summaryOf(help, "fleet put"));
}

TEST_F(HelpDocumentOfAProgram, ATermWithoutADescriptionDescribesItself) {
    EXPECT_EQ("--format=json|properties", summaryOf(help, "fleet import", "--format"));
}

} // namespace
