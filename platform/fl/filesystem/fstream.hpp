/// Files with UTF-16 paths.
#pragma once

#include <connector/platform/Export.hpp>

#include <fstream>
#include <istream>
#include <string>

namespace fl::filesystem {

namespace detail {

/// @return `path` as the operating system expects it: in UTF-8. It is only converted, not made
///         absolute, resolved or normalised.
/// @throws std::runtime_error "Text is not valid UTF-16" if the path is not well-formed
CONNECTOR_PLATFORM_EXPORT std::string
make_native_access_form_with_cleanup_i18n(const std::u16string& path);

/// @return false if `native_path` contains NUL, because the system would open the file whose name
/// ends
///         there, and if it is a directory, which could be opened but not read; true otherwise
CONNECTOR_PLATFORM_EXPORT bool names_readable_file(const std::string& native_path);

} // namespace detail

/// An input stream for a file, like std::basic_ifstream, but it opens only what can be read as a
/// file. is_open() returns whether that succeeded.
template <typename CharT>
class basic_ifstream : public std::basic_istream<CharT> {
public:
    /// Opens the file, as open does.
    explicit basic_ifstream(const std::string& native_path,
                            std::ios_base::openmode mode = std::ios_base::in)
        : std::basic_istream<CharT>(nullptr) {
        this->init(&file);
        open(native_path, mode);
    }

    /// Opens the file. On failure it sets the fail bit, and is_open() returns false.
    /// @param native_path  the result of detail::make_native_access_form_with_cleanup_i18n
    void open(const std::string& native_path, std::ios_base::openmode mode = std::ios_base::in) {
        if (!detail::names_readable_file(native_path) ||
            !file.open(native_path, mode | std::ios_base::in))
            this->setstate(std::ios_base::failbit);
        else
            this->clear();
    }

    /// @return whether a file is open
    bool is_open() const { return file.is_open(); }

    /// Closes the file. On failure it sets the fail bit.
    void close() {
        if (!file.close())
            this->setstate(std::ios_base::failbit);
    }

private:
    std::basic_filebuf<CharT> file;
};

using ifstream = basic_ifstream<char>;

} // namespace fl::filesystem
