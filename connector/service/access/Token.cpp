#include <connector/service/access/Token.hpp>

#include <algorithm>
#include <fstream>
#include <stdexcept>

namespace connector::service {

namespace {

constexpr std::size_t maxTokenLength = 4096;

/// @return the beginning of the file: enough for the longest token, its line break and one more
///         byte
std::string readStart(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text(maxTokenLength + 3, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.is_open() || file.bad() || (file.fail() && !file.eof()))
        throw std::runtime_error("Token file could not be read: " + path);
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

void removeLineBreak(std::string& text) {
    if (text.empty() || text.back() != '\n')
        return;
    text.pop_back();
    if (!text.empty() && text.back() == '\r')
        text.pop_back();
}

bool isVisible(char byte) {
    return byte > ' ' && byte <= '~';
}

} // namespace

bool Token::matches(const std::string& received) const {
    unsigned char difference = text.size() == received.size() ? 0 : 1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char other = i < received.size() ? received[i] : '\0';
        // volatile keeps the compiler from leaving the loop at the first difference
        const volatile unsigned char differs = static_cast<unsigned char>(text[i] ^ other);
        difference = static_cast<unsigned char>(difference | differs);
    }
    return difference == 0;
}

std::string readTokenText(const std::string& path) {
    std::string text = readStart(path);
    removeLineBreak(text);
    if (text.empty())
        throw std::runtime_error("Token file is empty: " + path);
    if (text.size() > maxTokenLength || !std::all_of(text.begin(), text.end(), isVisible))
        throw std::runtime_error("Token is not one line of visible ASCII of at most 4096 bytes: " +
                                 path);
    return text;
}

Token readToken(const std::string& path) {
    return Token(readTokenText(path));
}

} // namespace connector::service
