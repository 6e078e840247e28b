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
    std::int32_t id = 0;                     // the template that was written
    std::vector<std::string> unusable = {};  // its numbers that cannot be used in this account set
    std::string untold = {};                 // why nothing was written, where no message has said so
    FoundTemplate found = {};                // of NotAsSeen: what there is instead

    explicit operator bool() const { return state == State::Saved; }
};

// The numbers that the account set has marked unusable, ascending; nothing when they cannot be read.
std::optional<std::vector<std::string>> ReadUnusableNumbers(const std::string& templateId);

// The templates of a user, and the standard one, that have numbers marked unusable, ascending by id; nothing
// when they cannot be read.
std::optional<std::vector<std::string>> ReadTemplatesWithUnusableNumbers(const std::string& userId);

// A message of success with the note about the unusable numbers below it, if there are any.
std::string WithUnusableNote(std::string message, const std::vector<std::string>& unusable);

}  // namespace vicenter::store
