#include <connector/etcd/detail/Settings.hpp>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace connector::etcd::detail {

Settings checked(Options options) {
    if (options.endpoints.empty())
        throw std::invalid_argument("There is no endpoint");
    if (options.prefix.empty())
        throw std::invalid_argument("The prefix is empty");
    Settings settings;
    for (const std::string& url : options.endpoints)
        settings.endpoints.push_back(parseEndpoint(url));
    settings.options = std::move(options);
    return settings;
}

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios_base::binary);
    std::string content{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.good() && !stream.eof())
        throw std::runtime_error("The file cannot be read: " + path.string());
    return content;
}

std::string passwordOf(const Options& options) {
    if (options.passwordFile.empty())
        return options.password;
    std::string password = contentOf(options.passwordFile);
    if (!password.empty() && password.back() == '\n')
        password.pop_back();
    if (!password.empty() && password.back() == '\r')
        password.pop_back();
    return password;
}

} // namespace connector::etcd::detail
