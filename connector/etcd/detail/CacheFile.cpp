#include <connector/etcd/detail/CacheFile.hpp>

#include <connector/etcd/detail/Checksum.hpp>
#include <connector/etcd/detail/Packing.hpp>
#include <connector/etcd/detail/ValueText.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace connector::etcd::detail {

namespace {

constexpr std::string_view title = "connector-etcd cache 1\n";

std::string describe(int error) {
    return std::generic_category().message(error);
}

/// A file beside the target that is removed again unless it is renamed. Its name is new, so several
/// processes may write the same target at once.
class Draft {
public:
    explicit Draft(const std::filesystem::path& target) : path(target.string() + ".XXXXXX") {
        file = ::mkostemp(path.data(), O_CLOEXEC); // mode 0600
        if (file < 0)
            throw std::runtime_error(describe(errno));
    }
    ~Draft() {
        ::close(file);
        if (!isRenamed)
            ::unlink(path.c_str());
    }
    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    void write(std::string_view bytes) {
        while (!bytes.empty()) {
            const ssize_t written = ::write(file, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                throw std::runtime_error(describe(errno));
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    void renameTo(const std::filesystem::path& target) {
        if (::fdatasync(file) != 0 || ::rename(path.c_str(), target.c_str()) != 0)
            throw std::runtime_error(describe(errno));
        isRenamed = true;
    }

private:
    std::string path;
    int file = -1;
    bool isRenamed = false;
};

std::string pack(const sources::Table& table, const Known& known, const std::string& prefix) {
    Packer packer;
    packer.add(prefix);
    packer.add(static_cast<std::uint64_t>(known.revision));
    packer.add(known.clusterId);
    packer.add(known.witness.key);
    packer.add(static_cast<std::uint64_t>(known.witness.modRevision));
    packer.add(std::uint64_t{known.witness.valueSum});
    packer.add(static_cast<std::uint64_t>(known.witness.at));
    packer.add(std::uint64_t{known.unreadable->size()});
    for (const std::string& key : *known.unreadable)
        packer.add(key);
    packer.add(std::uint64_t{table.size()});
    for (const auto& [key, value] : table) {
        packer.add(key);
        packer.add(writeValue(value));
    }
    return packer.take();
}

sources::Table unpackTable(Unpacker& unpacker) {
    sources::Table table;
    for (std::uint64_t left = unpacker.number(); left > 0; --left) {
        std::string key = unpacker.text();
        auto value = readValue(unpacker.text());
        if (!value)
            throw std::runtime_error("damaged");
        table.emplace(std::move(key), *std::move(value));
    }
    return table;
}

Known unpackKnown(Unpacker& unpacker) {
    Known known;
    known.revision = static_cast<std::int64_t>(unpacker.number());
    known.clusterId = unpacker.number();
    known.witness.key = unpacker.text();
    known.witness.modRevision = static_cast<std::int64_t>(unpacker.number());
    known.witness.valueSum = static_cast<std::uint32_t>(unpacker.number());
    known.witness.at = static_cast<std::int64_t>(unpacker.number());
    std::set<std::string> unreadable;
    for (std::uint64_t left = unpacker.number(); left > 0; --left)
        unreadable.insert(unpacker.text());
    known.unreadable = std::make_shared<const std::set<std::string>>(std::move(unreadable));
    return known;
}

Cached unpack(std::string_view bytes, const std::string& prefix) {
    if (bytes.size() < title.size() + 8 || bytes.substr(0, title.size()) != title)
        throw std::runtime_error("damaged");
    const std::string_view body = bytes.substr(title.size(), bytes.size() - title.size() - 8);
    if (Unpacker(bytes.substr(bytes.size() - 8)).number() != checksumOf(body))
        throw std::runtime_error("damaged");
    Unpacker unpacker(body);
    if (unpacker.text() != prefix)
        throw std::runtime_error("belongs to another prefix");
    Cached cached;
    cached.known = unpackKnown(unpacker);
    cached.table = unpackTable(unpacker);
    if (!unpacker.isAtEnd())
        throw std::runtime_error("damaged");
    return cached;
}

} // namespace

CacheFile::CacheFile(std::filesystem::path newPath, std::string newPrefix)
    : path(std::move(newPath)), prefix(std::move(newPrefix)) {
}

std::optional<Cached> CacheFile::read() const {
    try {
        std::error_code ignored;
        if (!std::filesystem::exists(path, ignored))
            return std::nullopt;
        std::ifstream stream(path, std::ios_base::binary);
        if (!stream)
            throw std::runtime_error(describe(errno));
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        if (stream.bad())
            throw std::runtime_error(describe(EIO));
        return unpack(bytes, prefix);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path.string() + ": " + error.what());
    }
}

void CacheFile::write(const sources::Table& table, const Known& known) const {
    try {
        const std::string body = pack(table, known, prefix);
        Packer sum;
        sum.add(std::uint64_t{checksumOf(body)});
        Draft draft(path);
        draft.write(title);
        draft.write(body);
        draft.write(sum.take());
        draft.renameTo(path);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path.string() + ": " + error.what());
    }
}

} // namespace connector::etcd::detail
