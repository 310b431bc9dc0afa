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

// Does what parseStream does, where nobody can look at the source or the stream in between. A line of
// the log can be seen, so its property is stored by itself, after all before it. Leaving out the
// cursor's sync and refresh as well saves a tenth.
void PropertyFileSource::load(std::istream& file) {
    // A file that has not been read yet knows how much there is to read.
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
