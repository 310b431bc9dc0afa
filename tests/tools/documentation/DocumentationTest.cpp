/// The manual page and the completions say all that the help text and the grammar say.
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <regex>
#include <set>

namespace {

using test::Result;
using Names = std::set<std::string>;

std::string outputOf(const std::vector<std::string>& arguments) {
    const Result result = test::runConnectorConfig(arguments);
    EXPECT_EQ(0, result.status) << result.errors;
    EXPECT_EQ("", result.errors);
    return result.output;
}

Names matchesOf(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match)
        names.insert((*match)[1]);
    return names;
}

/// @return the options that the help text explains, with their dashes
Names optionsOfHelp() {
    const std::string help = outputOf({"--help"});
    Names options;
    for (const std::string& entry : matchesOf(help, "\n {2,6}(-[^\n]*)")) {
        // up to the description, which two spaces separate
        const std::string term = entry.substr(0, entry.find("  "));
        for (const std::string& name : matchesOf(" " + term, "[ ,](--?[a-z][a-z-]*)"))
            options.insert(name);
    }
    // "serve --http": an option in the term of a command
    for (const std::string& name : matchesOf(help, "\n  [a-z]+ (--[a-z-]+)"))
        options.insert(name);
    return options;
}

Names commandsOfHelp() {
    const std::string help = outputOf({"--help"});
    const std::size_t begin = help.find("\nCommands:\n");
    return matchesOf(help.substr(begin, help.find("\n\n", begin) - begin), "\n  ([a-z][a-z-]*)");
}

/// @return the names in the branches of what each command offers
Names offersOfBash(const std::string& begin) {
    Names names;
    for (const std::string& words :
         matchesOf(outputOf({"completion", "bash"}), begin + "='([^']*)'"))
        for (const std::string& word : matchesOf(" " + words, " ([a-z-]+)"))
            names.insert(word);
    return names;
}

Names all(Names names, const Names& others) {
    names.insert(others.begin(), others.end());
    return names;
}

TEST(Documentation, BashCompletesExactlyTheOptionsOfTheHelp) {
    EXPECT_EQ(optionsOfHelp(), all(offersOfBash("options"), offersOfBash("everywhere")));
}

TEST(Documentation, BashCompletesExactlyTheCommandsOfTheHelp) {
    const std::string script = outputOf({"completion", "bash"});
    EXPECT_EQ(commandsOfHelp(), matchesOf(script, "\n *':([a-z-]+)'\\) command="));
}

TEST(Documentation, ZshCompletesExactlyTheOptionsAndCommandsOfTheHelp) {
    const std::string script = outputOf({"completion", "zsh"});
    EXPECT_EQ(optionsOfHelp(), matchesOf(script, "'(?:\\*|\\([^)]*\\))(--?[a-z][a-z-]*)[+=]?\\["));
    // the first function has the commands that come first
    const std::string first = script.substr(0, script.find("\n}\n"));
    EXPECT_EQ(commandsOfHelp(), matchesOf(first, "\n {8}'([a-z-]+):"));
}

TEST(Documentation, FishCompletesExactlyTheOptionsAndCommandsOfTheHelp) {
    const std::string script = outputOf({"completion", "fish"});
    Names options;
    for (const std::string& name : matchesOf(script, "\ncomplete[^\n]* -l ([a-z-]+)"))
        options.insert("--" + name);
    for (const std::string& name : matchesOf(script, " -s ([a-z]) -l"))
        options.insert("-" + name);
    EXPECT_EQ(optionsOfHelp(), options);
    EXPECT_EQ(commandsOfHelp(), matchesOf(script, "_at \\\\'\\\\'' -a ([a-z-]+) -d"));
}

TEST(Documentation, EveryCompletionDescribesWhatItOffers) {
    const std::string zsh = outputOf({"completion", "zsh"});
    EXPECT_EQ(std::string::npos, zsh.find("[]"));
    EXPECT_EQ(Names{}, matchesOf(zsh, "\n {8}'([a-z-]+):'\n"));
    EXPECT_EQ(Names{}, matchesOf(outputOf({"completion", "fish"}),
                                 "\ncomplete[^\n]* -l ([a-z-]+)(?: -[rxF])*\n"));
}

TEST(Documentation, TheManualPageHasEveryLineOfTheHelp) {
    std::string page = outputOf({"manual"});
    page = std::regex_replace(page, std::regex("\\\\f[BIR]"), "");
    page = std::regex_replace(page, std::regex("\\\\-"), "-");
    page = std::regex_replace(page, std::regex("\\\\&"), "");
    page = std::regex_replace(page, std::regex("\\\\e"), "\\");
    for (const std::string& line : matchesOf(outputOf({"--help"}), "\n +([^\n]*[^:\n])\n?")) {
        const std::size_t gap = std::min(line.find("  "), line.size());
        const std::size_t rest = std::min(line.find_first_not_of(' ', gap), line.size());
        EXPECT_NE(std::string::npos, page.find(line.substr(0, gap))) << line;
        EXPECT_NE(std::string::npos, page.find(line.substr(rest))) << line;
    }
}

TEST(Documentation, TheManualPageHasNoMistakes) {
    if (test::run({"/bin/sh", "-c", "command -v man groff"}).status != 0)
        GTEST_SKIP() << "man or groff is not installed";
    const Result result = test::run(
        {"/bin/sh", "-c", "LC_ALL=C.UTF-8 man --warnings -l - > /dev/null"}, outputOf({"manual"}));
    EXPECT_EQ("", result.errors);
    EXPECT_EQ(0, result.status);
}

TEST(Documentation, WrongArgumentsAreReported) {
    EXPECT_EQ(test::usageError("Unknown shell: tcsh"),
              test::runConnectorConfig({"completion", "tcsh"}).errors);
    EXPECT_EQ(test::usageError("manual excludes --json"),
              test::runConnectorConfig({"manual", "--json"}).errors);
    EXPECT_EQ(2, test::runConnectorConfig({"completion"}).status);
    EXPECT_EQ(2, test::runConnectorConfig({"manual", "more"}).status);
}

} // namespace
