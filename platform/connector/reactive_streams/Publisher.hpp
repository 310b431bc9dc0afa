/// The root of everything that publishes values.
#pragma once

namespace connector::reactive_streams {

class __attribute__((visibility("default"))) Publisher {
public:
    virtual ~Publisher() = default;

    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;

protected:
    Publisher() = default;
};

} // namespace connector::reactive_streams
