#include <connector/sources/detail/WatchedPath.hpp>

#include <algorithm>
#include <deque>
#include <system_error>
#include <utility>

namespace connector::sources::detail {

namespace fs = std::filesystem;

/// A single walk from the root to the file.
class WatchedPath::Walk {
public:
    Walk(const fs::path& path, Inotify& newInotify) : inotify(newInotify), current("/") {
        insert(path);
    }

    std::vector<Entry> run() {
        while (!steps.empty() && step()) {
        }
        return std::move(found);
    }

private:
    /// Inserts the steps of a path before the remaining ones.
    void insert(const fs::path& path) {
        const fs::path relative = path.relative_path();
        steps.insert(steps.begin(), relative.begin(), relative.end());
    }

    /// @return whether the walk continues
    bool step() {
        const fs::path name = steps.front();
        steps.pop_front();
        if (name.empty() || name == ".")
            return true;
        if (name == "..") {
            current = current.parent_path();
            return true;
        }
        const fs::path next = current / name;
        std::error_code error;
        const bool isLast = steps.empty();
        if (isLast || !fs::is_directory(fs::symlink_status(next, error))) {
            // A link, the file, or nothing: check again once changes are reported.
            watch(current, Inotify::Interest::Entries, name.string());
            if (fs::is_symlink(fs::symlink_status(next, error)))
                return followLink(next);
        }
        if (fs::is_directory(fs::symlink_status(next, error))) {
            watch(next, Inotify::Interest::Itself, "");
            current = next;
            return true;
        }
        if (isLast)
            watch(next, Inotify::Interest::Content, "");
        return false;
    }

    bool followLink(const fs::path& link) {
        constexpr int mostLinks = 40; // the limit of the system
        std::error_code error;
        const fs::path target = fs::read_symlink(link, error);
        if (error || ++links > mostLinks)
            return false;
        if (target.is_absolute())
            current = "/";
        insert(target);
        return true;
    }

    void watch(const fs::path& where, Inotify::Interest interest, const std::string& name) {
        const int number = inotify.add(where, interest);
        if (number < 0)
            return;
        found.push_back({number, ""});
        if (!name.empty())
            found.push_back({number, name});
    }

    Inotify& inotify;
    fs::path current; // without links
    std::deque<fs::path> steps;
    int links = 0;
    std::vector<Entry> found;
};

void WatchedPath::follow(Inotify& inotify) {
    entries = Walk(path, inotify).run();
    numbers.clear();
    for (const Entry& entry : entries)
        numbers.push_back(entry.watch);
}

bool WatchedPath::concerns(const Inotify::Event& event) const {
    return event.watch < 0 ||
           std::any_of(entries.begin(), entries.end(), [&event](const Entry& entry) {
               return entry.watch == event.watch && entry.name == event.name;
           });
}

} // namespace connector::sources::detail
