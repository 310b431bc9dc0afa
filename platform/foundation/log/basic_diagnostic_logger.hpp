/// Diagnostic lines for developers, over the Boost.Log core.
///
/// A logger has a name and a mask of enabled severities. A severity is one bit; none is enabled at
/// the start. A line of a disabled severity is not composed and costs one relaxed load. A line of
/// an enabled severity becomes a record of the process-wide Boost.Log core with the attributes
///   "Channel"   std::string, the logger's name
///   "Severity"  unsigned int, the bit
///   "Message"   std::string, the line
/// for the application's sinks. An exception from a sink propagates to the caller.
///
/// This header does not include Boost.Log's headers, which take long to compile.
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
    /// Registers the logger for set_diagnostic_mask, with no severity enabled.
    explicit basic_diagnostic_logger(std::string name);
    ~basic_diagnostic_logger();

    basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
    basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;

    const std::string& name() const { return loggerName; }

    /// @return whether lines of this severity are written
    bool enabled(unsigned severity) const {
        return (mask.load(std::memory_order_relaxed) & severity) != 0;
    }

    void set_mask(unsigned new_mask) { mask.store(new_mask, std::memory_order_relaxed); }

    /// Writes one line if the severity is enabled; otherwise it does not use the pieces.
    /// @param pieces  are written one after the other to an output stream with the classic locale
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
        line.imbue(std::locale::classic()); // the global locale could group digits
        (line << ... << pieces);
        return line.str();
    }

    void push(unsigned severity, const std::string& line);

    const std::string loggerName;
    const std::unique_ptr<Attributes> attributes;
    std::atomic<unsigned> mask{0};
};

/// Sets the mask of enabled severities of every existing logger with that name.
/// May be called from any thread, also while lines are written.
/// @return whether there is such a logger
CONNECTOR_PLATFORM_EXPORT bool set_diagnostic_mask(const std::string& logger, unsigned mask);

} // namespace foundation::log
