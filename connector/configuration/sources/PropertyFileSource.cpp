#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <connector/configuration/detail/Errors.hpp>
#include <connector/configuration/detail/OptionMap.hpp>
#include <connector/configuration/properties/PropertyParser.hpp>
#include <connector/configuration/properties/StreamCursor.hpp>
#include <connector/configuration/properties/TableLoader.hpp>

#include <fl/filesystem/fstream.hpp>
#include <fl/i18n/codecvt.hpp>
#include <foundation/log/basic_diagnostic_logger.hpp>

#include <stdexcept>
#include <string_view>
#include <utility>

namespace connector::configuration {

namespace {

constexpr unsigned propertyFileSeverity = 16;

foundation::log::basic_diagnostic_logger
    propertyFileLogger("connector::configuration::property_file");

} // namespace

PropertyFileSource::PropertyFileSource(const std::u16string& path) {
    // Binary, so that carriage returns reach the parser.
    fl::filesystem::basic_ifstream<char> stream(
        fl::filesystem::detail::make_native_access_form_with_cleanup_i18n(path),
        std::ios_base::in | std::ios_base::binary);
    if (!stream.is_open()) {
        const fl::i18n::codecvt_ustring_to_string toUtf8("UTF-8", true);
        throw std::runtime_error(detail::errors::fileNotOpened + fl::i18n::to_string(path, toUtf8));
    }
    load(stream);
    stream.close();
}

PropertyFileSource::~PropertyFileSource() = default;

void PropertyFileSource::parseStream(std::istream& stream) {
    detail::StreamCursor cursor(stream);
    detail::PropertyParser parser(
        cursor, [&](std::string_view key, std::string_view value, bool atEndOfInput) {
            cursor.sync();
            store(std::string(key), std::string(value), atEndOfInput);
            if (cursor.good())
                cursor.refresh();
        });
    parser.parse();
}

// Does what parseStream does, but in batches, since nothing can observe the source or the stream
// while its constructor runs. A log line can be observed, so with diagnostics enabled each property
// is stored before its line is written. Without sync and refresh of the cursor it takes a tenth
// less.
void PropertyFileSource::load(std::istream& file) {
    // Before the first read, in_avail is the size of the file.
    const std::streamoff size = file.rdbuf()->in_avail();
    detail::StreamCursor cursor(file);
    detail::TableLoader loader(options, cursor, size);
    detail::PropertyParser parser(
        cursor, [&](std::string_view key, std::string_view value, bool atEndOfInput) {
            if (propertyFileLogger.enabled(propertyFileSeverity)) {
                loader.flush();
                store(std::string(key), std::string(value), atEndOfInput);
            } else {
                loader.add(key, value);
            }
        });
    parser.parse();
    loader.finish();
}

OptionValue PropertyFileSource::get(const std::string& key) {
    return detail::at(options, key);
}

OptionValue PropertyFileSource::set(const std::string&, OptionValue) {
    throw std::runtime_error(detail::errors::fileNotWritable);
}

bool PropertyFileSource::has(const std::string& key) {
    return options.find(key) != options.end();
}

void PropertyFileSource::setWatcher(Watcher newWatcher) {
    watcher.swap(newWatcher);
}

std::set<std::string> PropertyFileSource::keys() {
    return detail::keysOf(options);
}

void PropertyFileSource::store(const std::string& key, const std::string& value,
                               bool atEndOfInput) {
    const auto [entry, isNew] = options.try_emplace(key, value);
    if (!isNew)
        entry->second = value; // the last occurrence wins
    propertyFileLogger.log(propertyFileSeverity,
                           atEndOfInput ? "Parsed final property: " : "Parsed property: ", key,
                           " = ", value);
    if (watcher)
        watcher(key);
}

} // namespace connector::configuration
