/// Following all options of a schema.
#pragma once

#include <connector/Export.hpp>
#include <connector/configuration/Configuration.hpp>
#include <connector/configuration/typed/detail/Follower.hpp>
#include <connector/configuration/typed/detail/SchemaCore.hpp>
#include <connector/configuration/typed/detail/StreamLink.hpp>

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace connector::configuration::detail {

/// Reads the settings anew at every hint, keeps the good ones, and hints the listeners.
class CONNECTOR_EXPORT SettingsFollower : public Follower {
public:
    ~SettingsFollower() override;

    /// @param self      this object
    /// @param declared  whose keys are followed
    void link(const std::shared_ptr<Configuration>& followed, const std::weak_ptr<Follower>& self,
              const SchemaCore& declared);

    /// @return why the newest settings were not taken; empty when they were
    std::vector<OptionProblem> problems() const;

    void addListener(const std::weak_ptr<Follower>& listener);

protected:
    explicit SettingsFollower(const std::string& prefix);

    /// Reads the settings, and keeps them when there is no problem.
    /// @param isNew  set when they are kept, and differ from those before
    /// @return the problems
    virtual std::vector<OptionProblem> readSettings(Configuration& alive, bool& isNew) = 0;

private:
    bool read() final;
    void tell() final;
    void release() noexcept final {}

    std::weak_ptr<Configuration> configuration; // set once, by link
    std::vector<StreamLink> streams;            // set once, by link

    mutable std::mutex listMutex; // guards everything below; nothing is called while it is held
    std::vector<OptionProblem> currentProblems;
    std::vector<std::weak_ptr<Follower>> listeners;
};

} // namespace connector::configuration::detail
