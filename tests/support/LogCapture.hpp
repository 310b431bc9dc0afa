/// Records what the diagnostic loggers write.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace test {

struct LogRecord {
    std::string channel;
    unsigned severity;
    std::string message;
};

/// While it lives, receives every record of the process's logging core, in order.
/// Construct it, then switch loggers on with foundation::log::set_diagnostic_mask; its destructor
/// switches the library's two loggers off again.
class LogCapture {
public:
    LogCapture();
    /// Also calls `onRecord` with each record, on the thread that logs; it may throw.
    explicit LogCapture(std::function<void(const LogRecord&)> onRecord);
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    std::vector<LogRecord> records() const;
    /// The messages alone.
    std::vector<std::string> lines() const;
    void clear();

private:
    class Impl;
    const std::unique_ptr<Impl> impl;
};

/// Captures the lines of the core logger ("connector::configuration", severity 8) only.
class CoreLog : public LogCapture {
public:
    CoreLog();
};

/// Captures the lines of the property file logger (severity 16) only.
class PropertyFileLog : public LogCapture {
public:
    PropertyFileLog();
};

} // namespace test
