#include "LoadCase.hpp"

#include <glib.h>

namespace {

class Loaded {
public:
    explicit Loaded(int entries) {
        const std::string& path = bench::PropertyFile::ofEntriesInSection(entries).path;
        g_key_file_load_from_file(file, path.c_str(), G_KEY_FILE_NONE, nullptr);
    }
    ~Loaded() { g_key_file_free(file); }
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;

    std::string valueOf(const std::string& key) const {
        char* const value = g_key_file_get_value(file, section, key.c_str(), nullptr);
        const std::string text = value != nullptr ? value : "";
        g_free(value);
        return text;
    }

    std::size_t size() const {
        std::size_t count = 0;
        g_strfreev(g_key_file_get_keys(file, section, &count, nullptr));
        return count;
    }

private:
    static constexpr const char* section = "options";

    GKeyFile* const file = g_key_file_new();
};

[[maybe_unused]] const bool registered = bench::addLoading<Loaded>("GKeyFile");

} // namespace
