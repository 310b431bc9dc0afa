#include <fl/filesystem/fstream.hpp>

#include <fl/i18n/codecvt.hpp>

#include <filesystem>
#include <system_error>

namespace fl::filesystem::detail {

std::string make_native_access_form_with_cleanup_i18n(const std::u16string& path) {
    return i18n::to_string(path, i18n::codecvt_ustring_to_string("UTF-8", true));
}

bool names_readable_file(const std::string& native_path) {
    std::error_code unknown; // if the system cannot tell, open fails
    return native_path.find('\0') == std::string::npos &&
           !std::filesystem::is_directory(native_path, unknown);
}

} // namespace fl::filesystem::detail
