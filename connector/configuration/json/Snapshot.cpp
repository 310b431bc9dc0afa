#include <connector/configuration/json/Snapshot.hpp>

#include <connector/configuration/json/detail/BadMember.hpp>
#include <connector/configuration/json/detail/SnapshotReader.hpp>
#include <connector/configuration/json/detail/SnapshotWriter.hpp>

#include <Poco/Exception.h>
#include <Poco/JSON/Parser.h>

#include <iterator>
#include <stdexcept>

namespace connector::configuration {

namespace {

constexpr const char* invalid = "Not a valid snapshot: ";

Poco::Dynamic::Var parsed(const std::string& text) {
    try {
        return Poco::JSON::Parser().parse(text);
    } catch (const Poco::Exception& error) {
        throw std::runtime_error(invalid + ("not JSON: " + error.message()));
    }
}

} // namespace

void writeSnapshot(std::ostream& stream, const std::vector<SourceSnapshot>& sources,
                   const SecretFilter& isSecret) {
    stream << detail::SnapshotWriter(isSecret).document(sources);
}

std::vector<SourceSnapshot> readSnapshot(std::istream& stream) {
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    if (stream.bad())
        throw std::runtime_error("Snapshot could not be read");
    const Poco::Dynamic::Var document = parsed(text);
    try {
        return detail::readSources(document);
    } catch (const detail::BadMember& bad) {
        throw std::runtime_error(invalid + bad.text());
    }
}

} // namespace connector::configuration
