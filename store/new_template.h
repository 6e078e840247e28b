#pragma once

// A command's making of a template under a name that was free when it was chosen: whether it still is, and
// what the command writes, as one unit where the host's service can do that. User-interface thread.

#include <optional>
#include <string>

#include "store/command_unit.h"

namespace vicenter::store {

class NewTemplate {
  public:
    // One batch asks whether the name is free, and clears lines and control rows away that the template would
    // be born with: those above the largest template. ofUser: who may have no template of that name; nobody
    // may without one. While one is in scope nobody is asked anything, unless nothing may be written.
    explicit NewTemplate(std::string name, const std::string& ofUser = {});

    bool MayWrite() const { return fate_ == Fate::Free; }
    // Why nothing may be written, for users, with what the command did not do: "没有引入".
    std::string WhyNot(const std::string& undone) const;
    // False when what was written has been undone instead, or nobody knows; clsVIData::LastFailure() says
    // why.
    bool Commit();
    // The command's batch, and that; not where nothing may be written. An error has been shown to the user.
    bool RunAndCommit(const std::string& sql);

  private:
    enum class Fate { Free, Taken, Unknown };
    Fate ClearWay(const std::string& ofUser) const;

    std::string name_;
    Fate fate_ = Fate::Unknown;
    std::string why_;  // it is unknown
    std::optional<CommandUnit> unit_;
};

}  // namespace vicenter::store
