#include <foundation/log/basic_diagnostic_logger.hpp>

#include <boost/log/attributes/attribute_set.hpp>
#include <boost/log/attributes/constant.hpp>
#include <boost/log/core.hpp>
#include <boost/log/sources/record_ostream.hpp>

#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

namespace foundation::log {

namespace {

/// All existing loggers. It is created in the constructor of the first logger, so it is destroyed
/// after all static loggers of all libraries.
class Registry {
public:
    static Registry& instance() {
        static Registry registry;
        return registry;
    }

    void add(basic_diagnostic_logger& logger) {
        const std::lock_guard<std::mutex> lock(mutex);
        loggers.push_back(&logger);
    }

    void remove(basic_diagnostic_logger& logger) {
        const std::lock_guard<std::mutex> lock(mutex);
        loggers.erase(std::remove(loggers.begin(), loggers.end(), &logger), loggers.end());
    }

    bool set_mask(const std::string& name, unsigned mask) {
        const std::lock_guard<std::mutex> lock(mutex);
        bool found = false;
        for (basic_diagnostic_logger* logger : loggers) {
            if (logger->name() == name) {
                logger->set_mask(mask);
                found = true;
            }
        }
        return found;
    }

private:
    std::mutex mutex;
    std::vector<basic_diagnostic_logger*> loggers; // guarded by mutex
};

} // namespace

struct basic_diagnostic_logger::Attributes {
    boost::log::attributes::constant<std::string> channel;
};

basic_diagnostic_logger::basic_diagnostic_logger(std::string name)
    : loggerName(std::move(name)),
      attributes(new Attributes{boost::log::attributes::constant<std::string>(loggerName)}) {
    Registry::instance().add(*this);
}

basic_diagnostic_logger::~basic_diagnostic_logger() {
    Registry::instance().remove(*this);
}

void basic_diagnostic_logger::push(unsigned severity, const std::string& line) {
    boost::log::attribute_set recordAttributes;
    recordAttributes["Channel"] = attributes->channel;
    recordAttributes["Severity"] = boost::log::attributes::constant<unsigned>(severity);

    const boost::log::core_ptr core = boost::log::core::get();
    boost::log::record record = core->open_record(recordAttributes);
    if (!record)
        return; // the application's filters reject the record
    boost::log::record_ostream stream(record);
    stream << line;
    stream.flush();
    core->push_record(std::move(record));
}

bool set_diagnostic_mask(const std::string& logger, unsigned mask) {
    return Registry::instance().set_mask(logger, mask);
}

} // namespace foundation::log
