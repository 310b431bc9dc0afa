/// A configuration of the library or the model, as a program uses it. Outcomes are texts, see
/// Journal.hpp.
#pragma once

#include "SourceModel.hpp"
#include "Stream.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace test::model {

/// The number of the program's own sources. It adds them, changes them directly and keeps them when
/// they are removed.
inline constexpr std::size_t ownSources = 2;

/// Destroying a subject destroys its configuration.
class Subject {
public:
    virtual ~Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    virtual std::string get(const std::string& key) = 0;
    virtual std::string getOption(const std::string& key) = 0;
    virtual std::string has(const std::string& key) = 0;
    virtual std::string keys() = 0;
    virtual std::string set(const std::string& key, int value) = 0;
    virtual std::string set(const std::string& key, int value, const std::string& source) = 0;

    virtual std::string addInMemorySource(const std::string& name, const std::string& group,
                                          int order, bool readOnly, const Entries& entries) = 0;
    virtual std::string addOwnSource(const std::string& name, const std::string& group, int order,
                                     bool readOnly, std::size_t index) = 0;
    virtual std::string removeSource(const std::string& name) = 0;
    virtual SourceModel& ownSource(std::size_t index) = 0;

    virtual std::unique_ptr<Stream> watchOption(const std::string& key) = 0;
    virtual void removeStream(std::uint64_t id) = 0;

protected:
    Subject() = default;
};

} // namespace test::model
