#include <connector/service/access/Policy.hpp>

#include "support/TemporaryDirectory.hpp"

#include <connector/configuration/service/AddPropertyFileSource.hpp>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using connector::configuration::AddPropertyFileSource;
using connector::service::maxPropertyFileSize;
using connector::service::Policy;
using connector::service::PropertyRoot;
using connector::service::Secrets;

/// @return the refusal for an empty file that is extended to this size; empty if there is none
std::string refusalForSize(std::uintmax_t size) {
    const test::TemporaryDirectory directory;
    const std::filesystem::path file = directory.write("a.properties", "");
    std::filesystem::resize_file(file, size);
    const Policy policy({}, PropertyRoot(directory.path.string()), Secrets());
    AddPropertyFileSource message("name", "", 100, true, file.u16string());
    const std::string refusal = policy.authorize(message).refusal.value_or("");
    return refusal.substr(0, refusal.find(": "));
}

TEST(Policy, LimitsTheSizeOfPropertyFiles) {
    EXPECT_EQ(64u * 1024 * 1024, maxPropertyFileSize);
    EXPECT_EQ("", refusalForSize(0));
    EXPECT_EQ("", refusalForSize(maxPropertyFileSize));
    EXPECT_EQ("Property file is larger than 64 MiB", refusalForSize(maxPropertyFileSize + 1));
}

} // namespace
