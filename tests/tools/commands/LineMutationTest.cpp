/// serve with ten thousand corrupted requests.
#include "service/support/Mutations.hpp"
#include "tools/support/Program.hpp"

#include <connector/service/messages/ParsedRequest.hpp>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

TEST(ServeLines, TenThousandMutationsGetOneLineOfJsonEach) {
    constexpr int count = 10000;
    test::Process process(test::connectorConfig({"-s", "net.port=80", "serve"}));
    std::thread writer([&process] {
        test::Mutations mutations(1);
        for (int i = 0; i < count; ++i)
            process.write(mutations.next() + "\n");
        process.write(R"({"id":"last","type":"nothing","message":{}})"
                      "\n");
    });
    std::vector<std::string> replies;
    for (int i = 0; i <= count; ++i)
        replies.push_back(process.readLine());
    writer.join();
    EXPECT_EQ(
        R"({"id":"last","error":{"type":"std::invalid_argument","text":"Unknown message type: nothing"}})",
        replies.back());
    replies.pop_back();
    test::Mutations mutations(1);
    for (const std::string& reply : replies) {
        const std::string request = mutations.next();
        ASSERT_NO_THROW(connector::service::parseRequest(reply))
            << "request: " << request << "\nreply: " << reply;
    }
    EXPECT_EQ((test::Result{0, "", ""}), process.finish());
}

} // namespace
