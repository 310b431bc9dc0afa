#include "display/Trace.hpp"

#include <connector/service/text/Escaping.hpp>
#include <connector/service/text/LoadingGroup.hpp>

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <iostream>
#include <string_view>

namespace connector_config {

using connector::service::escaped;
using connector::service::LoadingGroup;

namespace {

/// @return where the key begins in a line that tells a parsed property; npos in others
std::size_t startOfKey(const std::string& line) {
    for (const std::string_view beginning : {"Parsed property: ", "Parsed final property: "}) {
        if (line.compare(0, beginning.size(), beginning) == 0)
            return beginning.size();
    }
    return line.npos;
}

class LineWriter
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::synchronized_feeding> {
public:
    explicit LineWriter(const Secrets& newSecrets) : secrets(newSecrets) {}

    void consume(const boost::log::record_view& record) {
        const std::string& line = boost::log::extract_or_throw<std::string>("Message", record);
        std::cerr << escaped(withoutSecret(line)) + '\n' << std::flush;
    }

private:
    std::string withoutSecret(const std::string& line) const;

    const Secrets secrets;
};

/// The lines that tell a value are those of parsed properties. A key can hold " = ", too; what might be
/// secret is masked.
std::string LineWriter::withoutSecret(const std::string& line) const {
    constexpr std::string_view separator = " = ";
    const std::size_t key = startOfKey(line);
    if (key == line.npos)
        return line;
    for (std::size_t end = line.find(separator, key); end != line.npos;
         end = line.find(separator, end + 1)) {
        if (secrets.hides(LoadingGroup::prefix() + line.substr(key, end - key)))
            return line.substr(0, end + separator.size()) + Secrets::mask;
    }
    return line;
}

/// @param coreMask          of the severities of the configuration itself
/// @param propertyFileMask  of those of the property file parser
void setMasks(unsigned coreMask, unsigned propertyFileMask) {
    foundation::log::set_diagnostic_mask("connector::configuration", coreMask);
    foundation::log::set_diagnostic_mask("connector::configuration::property_file",
                                         propertyFileMask);
}

} // namespace

class Trace::Impl {
public:
    using Sink = boost::log::sinks::synchronous_sink<LineWriter>;

    explicit Impl(const Secrets& secrets)
        : sink(boost::make_shared<Sink>(boost::make_shared<LineWriter>(secrets))) {}

    const boost::shared_ptr<Sink> sink;
};

Trace::Trace(const Secrets& secrets) : impl(new Impl(secrets)) {
    boost::log::core::get()->add_sink(impl->sink);
    setMasks(8, 16);
}

Trace::~Trace() {
    setMasks(0, 0);
    boost::log::core::get()->remove_sink(impl->sink);
}

} // namespace connector_config
