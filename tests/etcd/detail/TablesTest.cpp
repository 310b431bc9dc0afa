// Each table is made of the one before.
#include <connector/etcd/detail/Tables.hpp>

#include "sources/Shown.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <mutex>
#include <random>
#include <thread>

namespace {

using namespace connector::etcd::detail;
using connector::configuration::OptionValue;
using connector::sources::Table;
using Snapshot = Tables::Snapshot;

KeyValues put(const std::string& key, int value) {
    return {{key, OptionValue(value)}};
}

class TablesTest : public testing::Test {
protected:
    /// Makes the next table the present one.
    void change(const KeyValues& changes) { present = tables.next(present, changes); }

    Tables tables;
    Snapshot present = std::make_shared<const Table>(Table{{"a", OptionValue(0)}});
};

TEST_F(TablesTest, HaveTheChangesAndTheRest) {
    change({{"b", OptionValue(1)}, {"c", OptionValue(1)}});
    change({{"a", std::nullopt}, {"c", OptionValue(2)}, {"none", std::nullopt}});
    EXPECT_EQ((Table{{"b", OptionValue(1)}, {"c", OptionValue(2)}}), *present);
}

TEST_F(TablesTest, TakeThePlaceOfTheOneBeforeThePresentOne) {
    change(put("a", 1));
    const Table* const first = present.get();
    change(put("a", 2));
    change(put("b", 3));
    EXPECT_EQ(first, present.get());
    EXPECT_EQ((Table{{"a", OptionValue(2)}, {"b", OptionValue(3)}}), *present);
}

TEST_F(TablesTest, LeaveATableAloneThatIsStillRead) {
    change(put("a", 1));
    const Snapshot first = present;
    change(put("a", 2));
    change(put("a", 3));
    EXPECT_NE(first, present);
    EXPECT_EQ((Table{{"a", OptionValue(1)}}), *first);
    EXPECT_EQ((Table{{"a", OptionValue(3)}}), *present);
}

TEST_F(TablesTest, DoNotUseATableThatWasReleasedTooLate) {
    change(put("a", 1));
    Snapshot first = present;
    change(put("b", 2));
    change(put("c", 3));
    first.reset(); // lacks two changes
    change(put("d", 4));
    EXPECT_EQ((Table{{"a", OptionValue(1)},
                     {"b", OptionValue(2)},
                     {"c", OptionValue(3)},
                     {"d", OptionValue(4)}}),
              *present);
}

TEST_F(TablesTest, BeginAgainWithATableFromElsewhere) {
    change(put("a", 1));
    change(put("a", 2));
    present = std::make_shared<const Table>(Table{{"z", OptionValue(26)}});
    change(put("y", 25));
    EXPECT_EQ((Table{{"y", OptionValue(25)}, {"z", OptionValue(26)}}), *present);
}

TEST_F(TablesTest, AreCopiedAfterTrim) {
    change(put("a", 1));
    change(put("a", 2));
    tables.trim();
    change(put("a", 3));
    EXPECT_EQ((Table{{"a", OptionValue(3)}}), *present);
}

TEST_F(TablesTest, MayOutliveTheirMaker) {
    Snapshot last;
    {
        Tables others;
        last = others.next(others.next(present, put("b", 1)), put("c", 1));
    }
    EXPECT_EQ(3u, last->size());
}

/// A reader on another thread holds each table for a while, and checks that it stays as it was.
TEST_F(TablesTest, NeverChangeWhileTheyAreRead) {
    std::mt19937 random(1);
    std::mutex mutex;
    Snapshot shown = present;
    bool isOver = false;
    std::thread reader([&] {
        for (bool isLast = false; !isLast;) {
            Snapshot held;
            {
                const std::lock_guard<std::mutex> lock(mutex);
                held = shown;
                isLast = isOver;
            }
            const Table before = *held;
            std::this_thread::yield();
            EXPECT_EQ(before, *held);
        }
    });
    Table expected = *present;
    for (int i = 0; i < 2'000; ++i) {
        KeyValues changes = put(std::to_string(random() % 20), i);
        changes[std::to_string(random() % 20)] = std::nullopt;
        applyTo(expected, changes);
        change(changes);
        EXPECT_EQ(expected, *present);
        const std::lock_guard<std::mutex> lock(mutex);
        shown = present;
    }
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    reader.join();
}

TEST(DifferingKeysTest, AreInOrderAndWithoutThoseThatStayTheSame) {
    const Table table{{"a", OptionValue(1)}, {"b", OptionValue(1)}, {"c", OptionValue(1)}};
    const KeyValues changes{{"z", OptionValue(1)}, {"a", OptionValue(1)},
                            {"b", OptionValue(2)}, {"none", std::nullopt},
                            {"c", std::nullopt},   {"d", OptionValue(true)}};
    EXPECT_EQ((std::vector<std::string>{"b", "c", "d", "z"}), differingKeys(table, changes));
}

TEST(DifferingKeysTest, ANanDiffers) {
    const Table table{{"a", OptionValue(std::nan(""))}};
    EXPECT_EQ((std::vector<std::string>{"a"}),
              differingKeys(table, {{"a", OptionValue(std::nan(""))}}));
}

} // namespace
