// Writes as transactions.
#include <connector/etcd/detail/Transaction.hpp>

#include <connector/etcd/Conflict.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace connector::etcd::detail;
using connector::configuration::OptionValue;
using connector::etcd::Change;
using connector::etcd::Conflict;

std::string refusalOf(const std::vector<Change>& changes) {
    try {
        transactionOf(changes, "p/");
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "";
}

TEST(TransactionTest, ComparesWritesAndErases) {
    const auto request = transactionOf({{"a", OptionValue(1), 5}, {"b", std::nullopt, {}}}, "p/");
    ASSERT_EQ(1, request.compare_size());
    EXPECT_EQ("p/a", request.compare(0).key());
    EXPECT_EQ(5, request.compare(0).mod_revision());
    ASSERT_EQ(2, request.success_size());
    EXPECT_EQ("p/a", request.success(0).request_put().key());
    EXPECT_EQ(R"({"type":"int","value":1})", request.success(0).request_put().value());
    EXPECT_EQ("p/b", request.success(1).request_delete_range().key());
}

TEST(TransactionTest, IsRefusedWhenItCannotBeDone) {
    EXPECT_EQ("There is no change", refusalOf({}));
    EXPECT_EQ("A key is empty", refusalOf({{"", OptionValue(1), {}}}));
    EXPECT_EQ("A key is not valid UTF-8", refusalOf({{"\xFF", OptionValue(1), {}}}));
    EXPECT_EQ("A key is changed twice: a",
              refusalOf({{"a", OptionValue(1), {}}, {"a", std::nullopt, {}}}));
    EXPECT_EQ("Text is not valid UTF-8", refusalOf({{"a", OptionValue(std::string("\xFF")), {}}}));
    EXPECT_EQ("", refusalOf(std::vector<Change>(1, {"a", std::nullopt, {}})));
}

TEST(TransactionTest, AConflictNamesTheFirstKeyThatDiffers) {
    const auto request = transactionOf(
        {{"a", OptionValue(1), 5}, {"b", OptionValue(1), 0}, {"c", OptionValue(1), 7}}, "p/");
    etcdserverpb::TxnResponse response;
    for (const std::int64_t revision : {5, 6, 8}) {
        auto& range = *response.add_responses()->mutable_response_range();
        range.add_kvs()->set_mod_revision(revision);
    }
    try {
        std::rethrow_exception(conflictOf(request, response, "p/"));
    } catch (const Conflict& conflict) {
        EXPECT_STREQ("Conflict: b is at revision 6, not 0", conflict.what());
    }
    response.clear_responses();
    EXPECT_THROW(std::rethrow_exception(conflictOf(request, response, "p/")), std::runtime_error);
}

} // namespace
