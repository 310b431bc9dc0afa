/// The type of a declared option, with the type erased: what a schema needs to know of a member.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/typed/OptionCast.hpp>
#include <connector/configuration/typed/detail/Equality.hpp>
#include <connector/configuration/typed/detail/Writing.hpp>

#include <optional>
#include <string>
#include <utility>

namespace connector::configuration::detail {

/// `member` points to a value of the type.
class CONNECTOR_EXPORT OptionType {
public:
    virtual ~OptionType();

    virtual std::string name() const = 0;
    virtual Facets facets() const = 0;

    /// Converts into the member. @return false, and leaves the member alone, when it does not
    /// convert
    virtual bool read(const OptionValue& value, void* member) const = 0;

    /// @return a text that reads back to the same value; nothing when there is none
    virtual std::optional<std::string> text(const void* member) const = 0;
    virtual std::optional<std::string> json(const void* member) const = 0;

    /// @return whether the two are known to be the same
    virtual bool same(const void* left, const void* right) const = 0;
};

template <typename T>
class OptionTypeOf final : public OptionType {
public:
    std::string name() const override { return Conversion<T>::typeName(); }
    Facets facets() const override { return Writing<T>::facets(); }

    bool read(const OptionValue& value, void* member) const override {
        std::optional<T> converted = Conversion<T>::from(value);
        if (converted)
            *static_cast<T*>(member) = *std::move(converted);
        return converted.has_value();
    }

    std::optional<std::string> text(const void* member) const override {
        std::optional<std::string> written = Writing<T>::text(*static_cast<const T*>(member));
        if (!written)
            return std::nullopt;
        const std::optional<T> again = Conversion<T>::from(OptionValue(*written));
        return again && same(&*again, member) ? written : std::nullopt;
    }

    std::optional<std::string> json(const void* member) const override {
        return text(member) ? Writing<T>::json(*static_cast<const T*>(member)) : std::nullopt;
    }

    bool same(const void* left, const void* right) const override {
        return isKnownEqual(*static_cast<const T*>(left), *static_cast<const T*>(right));
    }
};

} // namespace connector::configuration::detail
