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

/// @return the position of the key in a line about a parsed property; npos for other lines
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
        std::cerr << escaped(masked(line)) + '\n' << std::flush;
    }

private:
    std::string masked(const std::string& line) const;

    const Secrets secrets;
};

/// Only lines about parsed properties contain values. A key may contain " = ", too, so the line
/// does not tell where the key ends. If any of the possible keys is secret, everything after the
/// shortest such key is masked.
std::string LineWriter::masked(const std::string& line) const {
    constexpr std::string_view separator = " = ";
    std::size_t start = startOfKey(line);
    if (start == line.npos)
        return line;
    Secrets::KeyMatcher key(secrets);
    key.append(LoadingGroup::prefix());
    for (std::size_t end = line.find(separator, start); end != line.npos;
         end = line.find(separator, end + 1)) {
        key.append(std::string_view(line).substr(start, end - start));
        start = end;
        if (key.isSecret())
            return line.substr(0, end + separator.size()) + Secrets::mask;
    }
    return line;
}

/// @param coreMask          enabled severities of the configuration
/// @param propertyFileMask  enabled severities of the property file parser
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
