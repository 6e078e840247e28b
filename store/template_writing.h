#pragma once

// A command's writing of a whole template: into the one that the user was asked about, or a new one under a
// name that was free. User-interface thread.

#include <optional>
#include <string>

#include "store/new_template.h"
#include "store/template_history.h"

namespace vicenter::store {

class TemplateWriting {
  public:
    // seen: nothing for a new one. While one is in scope nobody is asked anything, unless nothing may be
    // written.
    TemplateWriting(const std::string& name, const std::optional<SeenTemplate>& seen, HistoryCommand command);

    // Why nothing may be written, for users, with what the command did not do: "没有引入". Empty when it may.
    std::string WhyNot(const std::string& undone) const;
    // The command has written. False when that has been undone instead, or nobody knows;
    // clsVIData::LastFailure() says why.
    bool Commit();

  private:
    std::optional<KeptVersions> before_;  // of the one that is there
    std::optional<NewTemplate> made_;     // else
};

}  // namespace vicenter::store
