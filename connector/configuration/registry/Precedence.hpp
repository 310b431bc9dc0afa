/// Precedence: which source supplies the value of a key, and which one takes a write. All the rules
/// are here.
///
/// - Sources are consulted by ascending order. Of equal orders, the source that was added last
///   comes first: see insertionPoint.
/// - A source has a group, which is a prefix of its keys. It is queried only for keys that begin
///   with the group, and receives them without it: see normalisedGroup and
///   ConfigurationSourceMap::serves.
/// - The first source that serves a key and has it supplies the value: see findSupplier.
/// - The first writable source that serves a key takes a write, whichever source supplies the
///   value: see findWritable.
///
/// All functions require the configuration's mutex.
#pragma once

#include <connector/configuration/registry/ConfigurationSourceMap.hpp>

#include <string>

namespace connector::configuration::detail {

/// @return the group as a prefix that can be put in front of a key
std::string normalisedGroup(const std::string& group);

/// @return where a source of that order is inserted: before all that are not consulted earlier
SourceRecords::iterator insertionPoint(SourceRecords& records, int order);

/// @return the record with exactly that name, or the end
SourceRecords::iterator findByName(SourceRecords& records, const std::string& name);

/// The result of one walk over the records.
struct Supplier {
    const ConfigurationSourceMap* record = nullptr; ///< null when no source has the key
    const OptionValue* value = nullptr; ///< where `record` has an own table; null otherwise
    bool sourcesWereAsked = false;      ///< a source that is not one of the library's own took part
};

/// Walks the records up to the first that serves the key and has it. Looks into the library's own
/// tables directly; calls `has` of every other source that it passes.
/// @param lookup  the lookup that the walk is part of; all of its walks see the same tables
/// @param localKey  a buffer that the caller keeps, so that a key is cut without an allocation
/// @throws what `has` throws
Supplier findSupplier(SourceRecords& records, const std::string& key, LookupScope& lookup,
                      std::string& localKey);

/// @return the first record that is not read-only and serves the key; null when there is none
const ConfigurationSourceMap* findWritable(const SourceRecords& records, const std::string& key);

/// @return whether all sources are the library's own, so that no source can observe a lookup
bool allAreOwnTables(const SourceRecords& records);

} // namespace connector::configuration::detail
