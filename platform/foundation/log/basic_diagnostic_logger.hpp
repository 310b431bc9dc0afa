/// Diagnostic lines for developers, over the Boost.Log core.
///
/// A logger has a name and a mask of enabled severities; a severity is one bit. Nothing is enabled
/// at the start. A line whose bit is off costs one relaxed load: it is not composed. A line whose
/// bit is on becomes a record of the process-wide Boost.Log core with the attributes
///   "Channel"   std::string, the logger's name
///   "Severity"  unsigned int, the bit
///   "Message"   std::string, the line
/// and goes wherever the application's sinks send it. What a sink throws goes on to the caller.
///
/// Boost.Log's headers stay out of here: they take longer to compile than everything else.
#pragma once

#include <connector/platform/Export.hpp>

#include <atomic>
#include <locale>
#include <memory>
#include <sstream>
#include <string>

namespace foundation::log {

/// A named source of diagnostic lines. All operations may be called from any thread.
class CONNECTOR_PLATFORM_EXPORT basic_diagnostic_logger {
public:
    /// Makes the logger known to set_diagnostic_mask under `name`, with nothing enabled.
    explicit basic_diagnostic_logger(std::string name);
    ~basic_diagnostic_logger();

    basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
    basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

    const std::string& name() const { return loggerName; }

    /// @return whether a line of this severity would be composed
    bool enabled(unsigned severity) const {
        return (mask.load(std::memory_order_relaxed) & severity) != 0;
    }

    void set_mask(unsigned new_mask) { mask.store(new_mask, std::memory_order_relaxed); }

    /// Writes one line, made of the pieces one after the other as an output stream of the classic
    /// locale shows them, if the severity is enabled; otherwise the pieces are not touched.
    template <typename... Pieces>
    void log(unsigned severity, const Pieces&... pieces) {
        if (enabled(severity))
            push(severity, compose(pieces...));
    }

private:
    struct Attributes;

    template <typename... Pieces>
    static std::string compose(const Pieces&... pieces) {
        std::ostringstream line;
        line.imbue(std::locale::classic()); // an application's locale must not group our digits
        (line << ... << pieces);
        return line.str();
    }

    void push(unsigned severity, const std::string& line);

    const std::string loggerName;
    const std::unique_ptr<Attributes> attributes;
    std::atomic<unsigned> mask{0};
};

/// Sets the mask of enabled severities of every live logger with that name.
/// May be called from any thread, also while lines are written.
/// @return whether there is such a logger
CONNECTOR_PLATFORM_EXPORT bool set_diagnostic_mask(const std::string& logger, unsigned mask);

} // namespace foundation::log
