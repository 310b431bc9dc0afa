#include <connector/service/protocol/RequestTarget.hpp>

#include <boost/beast/core/string.hpp>

#include <algorithm>

namespace connector::service {

RequestTarget parseRequestTarget(std::string_view text) {
    for (const std::string_view scheme : {std::string_view("http"), std::string_view("https")}) {
        const std::string_view begin = text.substr(0, scheme.size());
        const bool isAbsolute =
            boost::beast::iequals({begin.data(), begin.size()}, {scheme.data(), scheme.size()}) &&
            text.substr(begin.size(), 3) == "://";
        if (!isAbsolute)
            continue;
        text.remove_prefix(scheme.size() + 3);
        const std::size_t end = std::min(text.find_first_of("/?"), text.size());
        return {text.substr(0, end), scheme, text.substr(end)};
    }
    return {std::nullopt, {}, text};
}

} // namespace connector::service
