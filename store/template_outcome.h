#pragma once

// What became of a template that was written, and what its users are told about its numbers. Save, import and
// generation answer with it; windows and the command line ask it. User-interface thread.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "store/template_guard.h"

namespace vicenter::store {

struct TemplateOutcome {
    enum class State {
        Saved,
        Refused,  // the account set refused the batch; the user has been shown why
        Failed,   // whatever else ended it, the user's own wish among it
        // Written, but what has become of it could not be asked; a save tells it as failed.
        SavedUntold,
        // Nothing was written: it is not what the user saw. Nobody has been told yet.
        NotAsSeen,
    };
    State state = State::Failed;
    std::int32_t id = 0;       // the template that was written
    std::string untold = {};   // why nothing was written, where no message has said so
    FoundTemplate found = {};  // of NotAsSeen: what there is instead

    explicit operator bool() const { return state == State::Saved; }
};

// Numbers that the account set has marked unusable, ascending; nothing when they cannot be read.
using UnusableNumbers = std::optional<std::vector<std::string>>;

UnusableNumbers ReadUnusableNumbers(const std::string& templateId);

// The templates of a user, and the standard one, that have numbers marked unusable, ascending by id; nothing
// when they cannot be read.
std::optional<std::vector<std::string>> ReadTemplatesWithUnusableNumbers(const std::string& userId);

// A message of success with the note about the unusable numbers below it, if there are any, or that they are
// not known.
std::string WithUnusableNote(std::string message, const UnusableNumbers& unusable);
// The same of one among several templates, in a line of its own.
void AppendUnusableNote(std::string& message, const std::string& name, const UnusableNumbers& unusable);

}  // namespace vicenter::store
