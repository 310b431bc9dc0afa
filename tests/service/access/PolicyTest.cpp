#include <connector/service/access/Policy.hpp>

#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/service/AddPropertyFileSource.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

namespace {

using connector::configuration::AddPropertyFileSource;
using connector::service::Decision;
using connector::service::defaultMaxFileSize;
using connector::service::Policy;
using connector::service::PropertyRoot;
using connector::service::Secrets;

/// An empty file below a property root.
class PolicyForFiles : public testing::Test {
protected:
    AddPropertyFileSource message(int order = 100, bool readOnly = true) const {
        return {"name", "", order, readOnly, file.u16string()};
    }

    Policy policy(std::uintmax_t maxFileSize = defaultMaxFileSize) const {
        return Policy({}, PropertyRoot(directory.path.string()), Secrets(), maxFileSize);
    }

    /// @return the decision about the file when it is extended to this size
    Decision decisionForSize(std::uintmax_t size, std::uintmax_t maxFileSize) const {
        std::filesystem::resize_file(file, size);
        AddPropertyFileSource add = message();
        return policy(maxFileSize).authorize(add);
    }

    void expectTooLarge(const std::string& limit, const Decision& decision) const {
        EXPECT_TRUE(decision.isTooLarge);
        EXPECT_EQ("Property file is larger than " + limit + ": " + file.string(),
                  decision.refusal.value_or("none"));
    }

    const test::TemporaryDirectory directory;
    const std::filesystem::path file = directory.write("a.properties", "");
};

TEST_F(PolicyForFiles, LimitsTheirSize) {
    constexpr std::uintmax_t mebibyte = 1024 * 1024;
    EXPECT_EQ(64 * mebibyte, defaultMaxFileSize);
    for (const std::uintmax_t limit : {defaultMaxFileSize, std::uintmax_t(1000)}) {
        for (const std::uintmax_t size : {std::uintmax_t(0), limit}) {
            const Decision decision = decisionForSize(size, limit);
            EXPECT_FALSE(decision.refusal) << *decision.refusal;
            EXPECT_FALSE(decision.isTooLarge);
        }
    }
    expectTooLarge("64 MiB", decisionForSize(defaultMaxFileSize + 1, defaultMaxFileSize));
    expectTooLarge("1 MiB", decisionForSize(mebibyte + 1, mebibyte));
    expectTooLarge("1000 bytes", decisionForSize(1001, 1000));
    expectTooLarge("0 bytes", decisionForSize(1, 0));
}

TEST_F(PolicyForFiles, ASparseFileCountsByItsLength) {
    expectTooLarge("64 MiB", decisionForSize(std::uintmax_t(64) << 30, defaultMaxFileSize));
}

TEST_F(PolicyForFiles, TheyBecomeReadOnly) {
    for (const bool readOnly : {false, true}) {
        AddPropertyFileSource add = message(1, readOnly);
        EXPECT_FALSE(policy().authorize(add).refusal);
        EXPECT_TRUE(add.readOnly);
        EXPECT_EQ(1, add.order);
    }
}

TEST_F(PolicyForFiles, TheirOrderIsAtLeastOne) {
    for (const int order : {0, -1, std::numeric_limits<int>::min()}) {
        AddPropertyFileSource add = message(order);
        const Decision decision = policy().authorize(add);
        EXPECT_EQ("Order of a file must be at least 1: " + std::to_string(order),
                  decision.refusal.value_or("none"));
        EXPECT_FALSE(decision.isTooLarge);
    }
}

} // namespace
