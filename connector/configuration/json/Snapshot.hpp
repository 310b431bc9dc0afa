/// Snapshots of all sources as JSON documents.
///
///     {"format": 1, "sources": [
///       {"name": N, "group": G, "order": O, "readOnly": R, "entries": [
///         {"key": K, "value": {"type": TAG, "value": PAYLOAD}},
///         {"key": K, "masked": true}]}]}
///
/// The sources are in the order of consultation, their entries sorted by key, without the group.
/// Values have the form of OptionValueJson.hpp, and keep type and content exactly: infinity and NaN
/// are the strings "inf", "-inf" and "nan". Where a text is not valid UTF-8, {"base64": BYTES}
/// stands in place of the string, also for keys and names. An entry that is masked has no value.
///
/// All functions may be called from any thread.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/SourceSnapshot.hpp>

#include <functional>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace connector::configuration {

/// Decides by the whole key, with the group, whether an option is secret.
using SecretFilter = std::function<bool(const std::string& key)>;

/// Writes a document, with each source and each entry on a line of its own. Writes nothing if it
/// throws. The caller checks the state of the stream.
/// @param sources   of ConfigurationImpl::snapshot
/// @param isSecret  true for options whose values are not to be written; if it is empty, all are.
///                  Entries that are masked already stay masked.
/// @throws std::runtime_error "Snapshot cannot be written: value of KEY in SOURCE: Text is not
///         valid UTF-16"
CONNECTOR_EXPORT void writeSnapshot(std::ostream& stream,
                                    const std::vector<SourceSnapshot>& sources,
                                    const SecretFilter& isSecret);

/// Reads the whole stream. Checks everything: all members that are listed above must be there, with
/// exactly these types, the sources sorted by order, and no name and no key twice. Other members
/// are ignored. A masked entry has the std::string "******" as its value.
/// @throws std::runtime_error "Not a valid snapshot: MEMBER: PROBLEM", for example "Not a valid
///         snapshot: sources[0].entries[2].value.type: unknown type: integer"; "Not a valid
///         snapshot: not JSON: REASON"; "Snapshot could not be read"
CONNECTOR_EXPORT std::vector<SourceSnapshot> readSnapshot(std::istream& stream);

} // namespace connector::configuration
