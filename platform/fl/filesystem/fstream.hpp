/// Files named by UTF-16 paths.
#pragma once

#include <connector/platform/Export.hpp>

#include <fstream>
#include <istream>
#include <string>

namespace fl::filesystem {

namespace detail {

/// @return `path` in the form in which the operating system takes file names: UTF-8 here. The
///         characters are kept as they are: nothing is made absolute, resolved or cleaned away.
/// @throws std::runtime_error "Text is not valid UTF-16" when the path is no well-formed text
CONNECTOR_PLATFORM_EXPORT std::string
make_native_access_form_with_cleanup_i18n(const std::u16string& path);

/// @return whether an operating system's open can mean what `native_path` says: false when the name
///         contains NUL, where the system would silently open a file of a shorter name, and for a
///         directory, which opens and then fails at the first read.
CONNECTOR_PLATFORM_EXPORT bool names_readable_file(const std::string& native_path);

} // namespace detail

/// An input stream over a file, like std::basic_ifstream, that takes a native path and opens only
/// what can be read as a file. Whether that worked is asked with is_open(), as with the standard's.
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

    /// Opens the file named by `native_path` (see detail::make_native_access_form_with_cleanup_i18n).
    /// On failure the fail bit is set and is_open() is false.
    void open(const std::string& native_path, std::ios_base::openmode mode = std::ios_base::in) {
        if (!detail::names_readable_file(native_path) ||
            !file.open(native_path, mode | std::ios_base::in))
            this->setstate(std::ios_base::failbit);
        else
            this->clear();
    }

    /// @return whether a file is open
    bool is_open() const { return file.is_open(); }

    /// Closes the file; a failure sets the fail bit.
    void close() {
        if (!file.close())
            this->setstate(std::ios_base::failbit);
    }

private:
    std::basic_filebuf<CharT> file;
};

using ifstream = basic_ifstream<char>;

} // namespace fl::filesystem
