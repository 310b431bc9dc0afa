/// The fast way to an answer: one walk over the library's own tables.
///
/// Read word for word, a lookup walks the sources twice, once to ask who has the key and once for the
/// value, and copies the key for every source that it asks. Where all sources that are asked are
/// tables of our own and no diagnostic line is written in between, nobody can tell that from one walk
/// that looks into the tables directly, and that takes less than half the time. As soon as somebody
/// could, because a source of the application's is to be asked or a log sink may look on, the answer
/// is left to the walks of ConfigurationImplLookup.cpp.
#include <connector/configuration/ConfigurationImpl.hpp>

#include <connector/configuration/detail/CoreDiagnostics.hpp>

#include <algorithm>

namespace connector::configuration {

namespace {

/// The key as the sources know it. It is cut off only when the group is another than that of the source
/// before, and into a buffer that stays: a string for each source would cost an allocation each.
class LocalKey {
public:
    LocalKey(const std::string& newKey, std::string& newBuffer) : key(newKey), buffer(newBuffer) {}

    /// @param groupLength  of a group with which the key begins
    const std::string& without(std::size_t groupLength) {
        if (groupLength == 0)
            return key;
        if (groupLength != cutOff)
            buffer.assign(key, groupLength, std::string::npos);
        cutOff = groupLength;
        return buffer;
    }

private:
    const std::string& key;
    std::string& buffer;
    std::size_t cutOff = 0;
};

} // namespace

ConfigurationImpl::TableAnswer ConfigurationImpl::askTables(Lock&, const std::string& key) {
    if (detail::coreLogger.enabled(detail::coreSeverity))
        return {false, nullptr, nullptr};
    LocalKey localKey(key, localKeyBuffer);
    for (const ConfigurationSourceMap& record : sources) {
        if (!record.serves(key))
            continue;
        if (record.table == nullptr)
            return {false, nullptr, nullptr};
        const auto entry = record.table->find(localKey.without(record.group.size()));
        if (entry != record.table->end())
            return {true, &record, &entry->second};
    }
    return {true, nullptr, nullptr};
}

/// @return whether a lookup whose answer nobody needs can be left out
bool ConfigurationImpl::nobodySeesLookups(Lock&) const {
    return !detail::coreLogger.enabled(detail::coreSeverity) &&
           std::all_of(sources.begin(), sources.end(), [](const ConfigurationSourceMap& record) {
               return record.table != nullptr;
           });
}

} // namespace connector::configuration
