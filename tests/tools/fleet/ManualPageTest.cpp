/// Runs the examples of docs/etcd.md in their order, on an empty server.
#include "Fleet.hpp"

#include "tools/support/ConsoleExamples.hpp"

namespace {

using test::Fleet;

TEST_F(Fleet, ExamplesPrintWhatThePageShows) {
    const std::string document = PROJECT_ROOT "/docs/etcd.md";
    const test::ConsoleExamples page(document, "etcd");
    EXPECT_GE(page.examples.size(), 7u);
    for (const test::Example& example : page.examples) {
        SCOPED_TRACE(document + ':' + std::to_string(example.line));
        EXPECT_EQ(example.output,
                  test::runInShell("ETCD=" + server.endpoint() + "\n" + example.command))
            << example.command;
    }
}

} // namespace
