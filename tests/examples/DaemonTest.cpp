/// The daemon among the examples, run in the root of the checkout.
#include "tools/support/Process.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

using test::Result;
using ::testing::HasSubstr;

class DaemonExample : public ::testing::Test {
protected:
    DaemonExample() { std::filesystem::current_path(PROJECT_ROOT); }

    static Result run(std::vector<std::string> arguments, const std::string& input = "") {
        arguments.insert(arguments.begin(),
                         {DAEMON_PROGRAM, "--file", "examples/daemon/daemon.properties"});
        return test::run(arguments, input);
    }
};

TEST_F(DaemonExample, TakesOptionsFromFilesAndTheCommandLine) {
    EXPECT_EQ((Result{0, "Welcome, Ada\nWho are you?\n", "2 guests are welcome\n"}),
              run({}, "Ada\nAlan\nquit\nAda\n"));
    EXPECT_EQ((Result{0, "Hi, Alan\nWho are you?\n", "1 guests are welcome\n"}),
              run({"--greeter.greeting", "Hi", "--greeter.guests=Alan"}, "Alan\nAda\n"));
}

TEST_F(DaemonExample, TakesChangesWhileItRuns) {
    EXPECT_EQ((Result{0, "Hello Grace, Grace\nWelcome, Grace\nWelcome, Alan\n",
                      "2 guests are welcome\n2 guests are welcome\n2 guests are welcome\n"
                      "request of 4 bytes\n"}),
              run({}, "set greeter.greeting Hello Grace\nGrace\nreset greeter.greeting\nGrace\n"
                      "set log.level error\nset greeter.guests Alan\nset log.level DEBUG\nAlan\n"));
}

TEST_F(DaemonExample, KeepsWhatIsGoodAndSaysWhatIsNot) {
    EXPECT_EQ((Result{0,
                      "refused: greeter.longest from override: must be between 8B and 4KiB: \"1\"\n"
                      "refused: greeter.longest from override: must be between 8B and 4KiB: \"1\"\n"
                      "Welcome, Ada\n"
                      "refused: greeter: greeting must be shorter than longest\n"
                      "refused: Option log.level from source override is not convertible to one of "
                      "error, info, debug: \"loud\"\n",
                      "2 guests are welcome\n2 guests are welcome\n2 guests are welcome\n"}),
              run({}, "set greeter.longest 1\nset greeter.greeting Good morning\nAda\n"
                      "set greeter.longest 9\nset greeter.longest 4KiB\n"
                      "reset greeter.greeting\nset log.level loud\n"));
}

TEST_F(DaemonExample, AnswersWrongOptionsAtTheStartWithAllProblems) {
    const Result result = test::run({DAEMON_PROGRAM, "--file", "tests/examples/wrong.properties"});
    EXPECT_EQ(
        (Result{2, "",
                "greeter.greeting from tests/examples/wrong.properties: must not be empty\n"
                "greeter.guests: is required\n"
                "greeter.patience from tests/examples/wrong.properties: is not convertible to "
                "duration: \"long\"\n"
                "greeter.gests from tests/examples/wrong.properties: is unknown, did you mean "
                "greeter.guests?\n"}),
        result);
    EXPECT_EQ((Result{2, "", "Property file could not be opened: missing.properties\n"}),
              test::run({DAEMON_PROGRAM, "--file", "missing.properties"}));
}

TEST_F(DaemonExample, AnswersWrongArguments) {
    const Result result = run({"--greeter.patience", "30"});
    EXPECT_NE(0, result.status);
    EXPECT_THAT(result.errors,
                HasSubstr("--greeter.patience: is not convertible to duration: \"30\""));
}

TEST_F(DaemonExample, WritesASampleThatItReads) {
    const Result sample = run({"--sample"});
    EXPECT_EQ(0, sample.status);
    EXPECT_THAT(sample.output, HasSubstr("# size of a request (byte size)\ngreeter.longest=64B\n"));
}

} // namespace
