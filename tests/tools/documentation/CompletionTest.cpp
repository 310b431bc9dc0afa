/// The completions, in the shells that are installed.
#include "support/TemporaryDirectory.hpp"
#include "tools/support/Program.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

namespace {

using test::Result;

std::string completionFor(const std::string& shell) {
    const Result result = test::runConnectorConfig({"completion", shell});
    EXPECT_EQ(0, result.status) << result.errors;
    return result.output;
}

bool isInstalled(const std::string& program) {
    return test::run({"/bin/sh", "-c", "command -v " + program}).status == 0;
}

std::set<std::string> linesOf(const std::string& text) {
    std::set<std::string> lines;
    std::istringstream rest(text);
    for (std::string line; std::getline(rest, line);)
        lines.insert(line.substr(0, line.find('\t'))); // fish adds a description
    return lines;
}

/// A shell in a directory with a file "site.yaml", a directory "sub" and the completion.
class Shell {
public:
    Shell(std::string program, const std::string& fileName)
        : program(std::move(program)), file(directory.path / fileName) {
        std::ofstream(file) << completionFor(this->program);
        std::ofstream(directory.path / "site.yaml") << "a: 1\n";
        std::filesystem::create_directory(directory.path / "sub");
    }

    std::set<std::string> run(const std::string& script) const {
        const Result result = test::run({"/usr/bin/env", "-C", directory.path.string(), program,
                                         "-c", script, program, file.string()});
        EXPECT_EQ("", result.errors);
        return linesOf(result.output);
    }

private:
    test::TemporaryDirectory directory;
    std::string program;
    std::filesystem::path file;
};

using Words = std::set<std::string>;

class BashCompletion : public testing::Test {
protected:
    void SetUp() override {
        if (!isInstalled("bash"))
            GTEST_SKIP() << "bash is not installed";
    }

    /// @param words  the words of the line as bash splits them, the last of them incomplete
    static Words complete(const std::string& words) {
        const Shell shell("bash", "completion");
        // compopt works only while readline completes
        return shell.run("source \"$1\"; compopt() { :; }; COMP_WORDS=(connector-config " + words +
                         "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _connector_config; "
                         "printf '%s\\n' \"${COMPREPLY[@]}\"");
    }
};

TEST_F(BashCompletion, ThePlaceOfTheCommandTakesCommands) {
    EXPECT_EQ((Words{"serve", "set", "show"}), [] {
        Words words = complete("s");
        words.erase("snapshot");
        return words;
    }());
    EXPECT_EQ(Words{"keys"}, complete("--json key"));
}

TEST_F(BashCompletion, OptionsOfTheCommandAndOfTheProgramFollowTheCommand) {
    const Words options = complete("check --s");
    EXPECT_EQ(1u, options.count("--schema"));
    EXPECT_EQ(1u, options.count("--secret"));
    EXPECT_EQ(0u, complete("keys --s").count("--schema"));
}

TEST_F(BashCompletion, ValuesAreFilesDirectoriesOrChoices) {
    EXPECT_EQ((Words{"site.yaml", "sub"}), complete("-f s"));
    EXPECT_EQ((Words{"sub"}), complete("serve --property-root s"));
    EXPECT_EQ((Words{"bash", "fish", "zsh"}), complete("completion ''"));
    EXPECT_EQ((Words{"site.yaml", "sub"}), complete("--file = s"));
    EXPECT_EQ((Words{""}), complete("--secret s"));
}

TEST_F(BashCompletion, TheValueOfAnOptionIsNoCommand) {
    EXPECT_EQ(Words{"keys"}, complete("-s get = check key"));
    EXPECT_EQ(Words{"keys"}, complete("-s a = check key"));
    EXPECT_EQ(Words{"keys"}, complete("--url unix : check key"));
}

class FishCompletion : public testing::Test {
protected:
    void SetUp() override {
        if (!isInstalled("fish"))
            GTEST_SKIP() << "fish is not installed";
    }

    static Words complete(const std::string& line) {
        const Shell shell("fish", "connector-config.fish");
        return shell.run("set -gx HOME (pwd); source $argv[2]; complete -C 'connector-config " +
                         line + "'");
    }
};

TEST_F(FishCompletion, CompletesCommandsOptionsAndValues) {
    EXPECT_EQ(Words{"keys"}, complete("--json key"));
    EXPECT_EQ(Words{"keys"}, complete("-s check key"));
    EXPECT_EQ(Words{"--schema"}, complete("check --sch"));
    EXPECT_EQ(Words{}, complete("keys --sch"));
    EXPECT_EQ((Words{"bash", "fish", "zsh"}), complete("completion "));
    EXPECT_EQ(1u, complete("-f si").count("site.yaml"));
    EXPECT_EQ(Words{}, complete("--secret si"));
}

class ZshCompletion : public testing::Test {
protected:
    void SetUp() override {
        if (!isInstalled("zsh"))
            GTEST_SKIP() << "zsh is not installed";
    }

    /// Types the line and a tab in an interactive zsh.
    /// @return what is on its terminal after that
    static std::string complete(const std::string& line) {
        const test::TemporaryDirectory directory;
        std::ofstream(directory.path / "_connector-config") << completionFor("zsh");
        const std::string script = R"(
zmodload zsh/zpty
zpty shell zsh -f
zpty -w shell "PS1= LISTMAX=1000 fpath=($1 \$fpath); TERM=dumb"
zpty -w shell "autoload -Uz compinit && compinit -u -d $1/dump; zstyle ':completion:*' menu no"
zpty -w shell "zle-finish() { zle -I; print -r -- \"[\$BUFFER]\"; exit }; zle -N zle-finish"
zpty -w shell "bindkey '^X' zle-finish; print rea''dy"
zpty -r shell output '*ready*'
zpty -n -w shell "$2"$'\t\x18'
zpty -r shell output "*\]*"
print -r -- "$output"
)";
        const Result result = test::run({"/usr/bin/env", "zsh", "-fc", script, "zsh",
                                         directory.path.string(), "connector-config " + line});
        return result.output + result.errors;
    }
};

TEST_F(ZshCompletion, CompletesCommandsOptionsAndValues) {
    EXPECT_NE(std::string::npos, complete("--json key").find("[connector-config --json keys"));
    EXPECT_NE(std::string::npos, complete("check --sch").find("check --schema"));
    EXPECT_NE(std::string::npos, complete("completion fi").find("completion fish"));
    EXPECT_EQ(std::string::npos, complete("keys --sch").find("--schema"));
}

} // namespace
