// Pages of a list.
#include <connector/etcd/detail/Listing.hpp>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace connector::etcd::detail;
using etcdserverpb::RangeRequest;
using etcdserverpb::RangeResponse;

RangeResponse page(std::int64_t revision, bool more) {
    RangeResponse response;
    response.mutable_header()->set_revision(revision);
    response.mutable_header()->set_cluster_id(9);
    response.set_more(more);
    return response;
}

void add(RangeResponse& response, const std::string& key, const std::string& value,
         std::int64_t revision) {
    etcdserverpb::KeyValue& entry = *response.add_kvs();
    entry.set_key(key);
    entry.set_value(value);
    entry.set_mod_revision(revision);
}

TEST(ListingTest, AsksForAllPagesAtTheRevisionOfTheFirst) {
    Listing listing("p/");
    RangeRequest request = listing.next();
    EXPECT_EQ("p/", request.key());
    EXPECT_EQ("p0", request.range_end());
    EXPECT_EQ(0, request.revision());
    EXPECT_FALSE(request.serializable());
    RangeResponse first = page(7, true);
    add(first, "p/a", "1", 3);
    EXPECT_FALSE(listing.take(first));
    request = listing.next();
    EXPECT_EQ(std::string("p/a\0", 4), request.key());
    EXPECT_EQ(7, request.revision());
    EXPECT_TRUE(request.serializable());
    RangeResponse second = page(8, false);
    add(second, "p/b", "\xFF", 5);
    add(second, "p/\xFF", "ignored", 6);
    EXPECT_TRUE(listing.take(second));
    const List list = listing.result();
    EXPECT_EQ(1u, list.table.size());
    EXPECT_EQ(7, list.known.revision);
    EXPECT_EQ(9u, list.known.clusterId);
    EXPECT_EQ("p/b", list.known.witness.key);
    EXPECT_EQ(std::set<std::string>{"b"}, *list.known.unreadable);
    EXPECT_EQ(1u, listing.ignored());
}

TEST(ListingTest, AsksForLargeValuesInSmallPages) {
    Listing listing("p/");
    RangeResponse first = page(7, true);
    add(first, "p/a", std::string(100'000, 'x'), 3);
    listing.take(first);
    EXPECT_EQ(10, listing.next().limit());
    RangeResponse second = page(7, true);
    add(second, "p/b", "1", 3);
    listing.take(second);
    EXPECT_EQ(10'000, listing.next().limit());
}

TEST(ListingTest, RefusesNonsense) {
    EXPECT_THROW(Listing("p/").take(page(0, false)), std::runtime_error);
    EXPECT_THROW(Listing("p/").take(page(7, true)), std::runtime_error);
    for (const char* const key : {"q", "p", "p/a", "p/A"}) {
        Listing listing("p/");
        RangeResponse first = page(7, true);
        add(first, "p/a", "1", 3);
        listing.take(first);
        RangeResponse second = page(7, false);
        add(second, key, "1", 3);
        EXPECT_THROW(listing.take(second), std::runtime_error) << key;
    }
    Listing listing("p/");
    RangeResponse first = page(7, true);
    add(first, "p/a", "1", 3);
    listing.take(first);
    RangeResponse other = page(7, false);
    other.mutable_header()->set_cluster_id(8);
    EXPECT_THROW(listing.take(other), std::runtime_error);
}

} // namespace
