#include <connector/sources/detail/PropertiesReader.hpp>

#include <connector/configuration/sources/PropertyFileSource.hpp>

#include <sstream>

namespace connector::sources::detail {

Table readProperties(const std::string& bytes) {
    configuration::PropertyFileSource source(u"/dev/null"); // empty, to be filled from memory
    Table table;
    source.setWatcher([&](const std::string& key) { table[key] = source.get(key); });
    std::istringstream stream(bytes);
    source.parseStream(stream);
    return table;
}

} // namespace connector::sources::detail
