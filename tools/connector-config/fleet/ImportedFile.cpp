#include "fleet/ImportedFile.hpp"

#include "checking/FileContent.hpp"

#include <connector/service/text/Utf8.hpp>

#include <connector/sources/FileSource.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/static_visitor.hpp>

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace connector_config {

using connector::service::isUtf8;
using connector::sources::FileFormat;
using connector::sources::FileSource;

namespace {

/// @return whether etcd can hold the texts of a value
struct HasValidTexts : boost::static_visitor<bool> {
    template <typename Value>
    bool operator()(const Value&) const {
        return true;
    }
    bool operator()(const std::string& text) const { return isUtf8(text); }
    bool operator()(const std::vector<std::string>& texts) const {
        return std::all_of(texts.begin(), texts.end(),
                           [](const auto& text) { return isUtf8(text); });
    }
};

void check(const OptionTable& options) {
    for (const auto& [key, value] : options) {
        if (key.empty())
            throw std::runtime_error("A key is empty");
        if (!isUtf8(key))
            throw std::runtime_error("Key is not valid UTF-8: " + key);
        if (!boost::apply_visitor(HasValidTexts(), value))
            throw std::runtime_error("Value is not valid UTF-8: " + key);
    }
}

/// A pipe has its text once, and it was read already.
void requireRegularFile(const std::string& path) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(path, ignored))
        throw std::runtime_error("Neither a regular file nor what fleet export writes: " + path);
}

OptionTable read(const FileArgument& file) {
    if (file.format == FileFormat::Json) {
        if (auto options = readExportDocument(readFile(file.path)))
            return *std::move(options);
        requireRegularFile(file.path);
    }
    const auto table = FileSource(file.path, file.format).table();
    return {table->begin(), table->end()};
}

} // namespace

OptionTable readImportedFile(const FileArgument& file) {
    OptionTable options = read(file);
    check(options);
    return options;
}

} // namespace connector_config
