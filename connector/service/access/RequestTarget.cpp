#include <connector/service/access/RequestTarget.hpp>

#include <Poco/String.h>

#include <algorithm>

namespace connector::service {

RequestTarget parseRequestTarget(const std::string& text) {
    const std::string scheme = "http://";
    if (Poco::icompare(text.substr(0, scheme.size()), scheme) != 0)
        return {std::nullopt, text};
    const std::size_t end = std::min(text.find_first_of("/?", scheme.size()), text.size());
    return {text.substr(scheme.size(), end - scheme.size()), text.substr(end)};
}

} // namespace connector::service
