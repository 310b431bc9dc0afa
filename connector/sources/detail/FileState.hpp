/// The state of a FileSource and its file.
#pragma once

#include <connector/sources/FileFormat.hpp>
#include <connector/sources/detail/FileText.hpp>

#include <filesystem>
#include <mutex>
#include <optional>

namespace connector::sources::detail {

struct FileState {
    // constant after construction
    FileFormat format = FileFormat::ByExtension;
    std::filesystem::path path; ///< as it was passed
    std::filesystem::path file; ///< absolute

    std::mutex reading; ///< serialises reloads, so that no reload restores older content

    /// The file that the table was read from.
    struct Origin {
        FileStamp stamp;
        std::size_t hash = 0; ///< of the bytes
    };

    std::mutex originMutex;       ///< guards the origin; taken under `reading`
    std::optional<Origin> origin; ///< empty: there was no file
};

} // namespace connector::sources::detail
