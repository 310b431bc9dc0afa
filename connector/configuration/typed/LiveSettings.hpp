/// Settings that follow the configuration, all or nothing.
#pragma once

#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/InvalidSettings.hpp>
#include <connector/configuration/typed/OptionSchema.hpp>
#include <connector/configuration/typed/OptionWatch.hpp>
#include <connector/configuration/typed/detail/SettingsFollower.hpp>
#include <connector/configuration/typed/detail/ValueCell.hpp>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace connector::configuration {

namespace detail {

/// @return whether the settings are known to be equal: by their own ==, or otherwise by comparing
///         each option
template <typename Settings>
bool areSame(const SchemaCore& schema, const Settings& left, const Settings& right) {
    if constexpr (HasEquality<Settings>::value)
        return left == right;
    else
        return schema.same(&left, &right);
}

template <typename Settings>
class SettingsState final : public SettingsFollower {
public:
    explicit SettingsState(const OptionSchema<Settings>& newSchema)
        : SettingsFollower(newSchema.core().prefix()), schema(newSchema.core()) {}

    const SchemaCore schema;
    SharedCell<Settings> cell; // empty until the first good settings

private:
    std::vector<OptionProblem> readSettings(Configuration& alive, bool& isNew) override {
        Settings settings{};
        std::vector<OptionProblem> problems = schema.read(alive, UnknownKeys::Allowed, &settings);
        const auto before = cell.snapshot();
        isNew = problems.empty() && (!before || !areSame(schema, *before, settings));
        if (isNew)
            cell.store(std::move(settings));
        return problems;
    }
};

/// Calls a handler with the settings when their state reports a change.
template <typename Settings>
class SettingsHandler final : public Follower {
public:
    using Handler = std::function<void(const Settings&)>;

    SettingsHandler(std::shared_ptr<const SettingsState<Settings>> newState, Handler&& newHandler)
        : Follower(newState->schema.prefix()), state(std::move(newState)),
          handler(std::move(newHandler)) {}

private:
    bool read() override {
        auto next = state->cell.snapshot();
        const bool isNew = !newest || !areSame(state->schema, *newest, *next);
        newest = std::move(next);
        return isNew;
    }
    void tell() override { handler(*newest); }
    void release() noexcept override { handler = nullptr; }

    const std::shared_ptr<const SettingsState<Settings>> state;
    Handler handler;
    std::shared_ptr<const Settings> newest; // used by the running thread only
};

} // namespace detail

/// Follows every option that a schema declares, on the threads that change them, and keeps the
/// newest settings that the schema accepts. After a change that breaks a check or a rule, the last
/// good settings stay. Once all changes that streams of the options would report are complete, the
/// snapshot equals what the schema's read returns, or there are problems.
///
/// All operations may be called from any thread. Copies share the settings. It does not keep the
/// configuration alive; once that is destroyed, the last settings stay.
template <typename Settings>
class LiveSettings {
public:
    /// Takes the configuration's lock.
    /// @throws InvalidSettings when the first settings are bad
    /// @throws std::invalid_argument "A null configuration cannot be followed."
    /// @throws what a source, a check or a rule throws
    LiveSettings(const std::shared_ptr<Configuration>& configuration,
                 const OptionSchema<Settings>& schema)
        : state(std::make_shared<State>(schema)) {
        state->link(configuration, state, state->schema);
        state->start();
        if (!state->cell.snapshot())
            throw InvalidSettings(state->problems());
    }

    LiveSettings(const LiveSettings&) = default; // and no moves: there is no empty state
    LiveSettings& operator=(const LiveSettings&) = default;

    /// @return a snapshot of the settings, which does not change. Takes no lock of the
    ///         configuration.
    std::shared_ptr<const Settings> snapshot() const { return state->cell.snapshot(); }

    /// @return why the newest settings were not taken; empty when they were
    std::vector<OptionProblem> problems() const { return state->problems(); }

    /// Calls the handler with the settings, at once and whenever new ones are taken. The rules of
    /// the function onChange apply here too; a failing handler is reported under the schema's
    /// prefix. The settings are followed for as long as such a watch exists.
    /// @throws std::invalid_argument "An empty handler cannot be called."
    [[nodiscard]] OptionWatch onChange(std::function<void(const Settings&)> handler) const {
        detail::demandHandler(handler != nullptr);
        auto follower =
            std::make_shared<detail::SettingsHandler<Settings>>(state, std::move(handler));
        state->addListener(follower);
        follower->start();
        return OptionWatch(std::move(follower));
    }

private:
    using State = detail::SettingsState<Settings>;

    std::shared_ptr<State> state;
};

} // namespace connector::configuration
