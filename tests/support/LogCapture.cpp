#include "support/LogCapture.hpp"

#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/unlocked_frontend.hpp>
#include <boost/smart_ptr/make_shared.hpp>

#include <mutex>
#include <utility>

namespace test {

namespace {

class Backend
    : public boost::log::sinks::basic_sink_backend<boost::log::sinks::concurrent_feeding> {
public:
    explicit Backend(std::function<void(const LogRecord&)> newOnRecord)
        : onRecord(std::move(newOnRecord)) {}

    void consume(const boost::log::record_view& view) {
        const LogRecord record{
            boost::log::extract_or_throw<std::string>("Channel", view),
            boost::log::extract_or_throw<unsigned>("Severity", view),
            boost::log::extract_or_throw<std::string>("Message", view),
        };
        {
            const std::lock_guard<std::mutex> lock(mutex);
            records.push_back(record);
        }
        if (onRecord)
            onRecord(record);
    }

    std::mutex mutex;
    std::vector<LogRecord> records; // guarded by mutex

private:
    const std::function<void(const LogRecord&)> onRecord;
};

using Sink = boost::log::sinks::unlocked_sink<Backend>;

} // namespace

class LogCapture::Impl {
public:
    explicit Impl(std::function<void(const LogRecord&)> onRecord)
        : backend(boost::make_shared<Backend>(std::move(onRecord))),
          sink(boost::make_shared<Sink>(backend)) {
        boost::log::core::get()->add_sink(sink);
    }
    ~Impl() { boost::log::core::get()->remove_sink(sink); }

    const boost::shared_ptr<Backend> backend;
    const boost::shared_ptr<Sink> sink;
};

LogCapture::LogCapture() : LogCapture(nullptr) {
}

LogCapture::LogCapture(std::function<void(const LogRecord&)> onRecord)
    : impl(new Impl(std::move(onRecord))) {
}

LogCapture::~LogCapture() {
    foundation::log::set_diagnostic_mask("connector::configuration", 0);
    foundation::log::set_diagnostic_mask("connector::configuration::property_file", 0);
}

std::vector<LogRecord> LogCapture::records() const {
    const std::lock_guard<std::mutex> lock(impl->backend->mutex);
    return impl->backend->records;
}

std::vector<std::string> LogCapture::lines() const {
    std::vector<std::string> messages;
    for (const LogRecord& record : records())
        messages.push_back(record.message);
    return messages;
}

void LogCapture::clear() {
    const std::lock_guard<std::mutex> lock(impl->backend->mutex);
    impl->backend->records.clear();
}

CoreLog::CoreLog() {
    foundation::log::set_diagnostic_mask("connector::configuration", 8);
}

PropertyFileLog::PropertyFileLog() {
    foundation::log::set_diagnostic_mask("connector::configuration::property_file", 16);
}

} // namespace test
