#pragma once

// Questions put to the account set before a template is written to: is it still there, is it still whose it
// was, does it still hold what was read. They stand beside the statements of the commands and change nothing;
// what clears away lines that belong to no template is the one exception.
//
// An answer that could not be had is no answer: callers then write nothing. User-interface thread.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/ado/recordset.h"

namespace vicenter::store {

// A template's row as the account set holds it now.
struct TemplateRow {
    bool exists = false;
    std::int32_t ownerId = 0;
    std::string name;
    // One record a line in the order in which lines are shown, a record without FEntryID when there are none;
    // no object when they were not asked for.
    ado::RecordsetRef lines;
};

// Nothing when the account set does not answer.
std::optional<TemplateRow> AskTemplate(const std::string& id);
std::optional<TemplateRow> AskTemplateWithLines(const std::string& id);

// The standard template is everybody's, whatever its row says.
bool IsStandard(const std::string& templateId);
// True when the user may write to it: the user's own, or the standard template.
bool MayWrite(const TemplateRow& row, const std::string& templateId, const std::string& userId);

// A template was just inserted and its id read back as the largest one, which under a race is another's. True
// when the row of that id has the owner and the name that were inserted; lines and control rows that an
// earlier template of that id left behind are then gone.
bool ConfirmNewTemplate(const std::string& id, const std::string& userId, const std::string& name);

// Clears lines and control rows away that the next new template would be born with: those above the largest
// template. Asks first, and deletes only when there are some.
void ClearWayForNewTemplate();

// The template of a name that an import or a generation would write to.
struct NamedTemplate {
    enum class State { None, MayWrite, Anothers, Unknown };
    State state = State::None;
    std::int32_t id = -1;
    std::int32_t ownerId = 0;

    // Whom the template belongs to once it is written anew: the standard template stays everybody's.
    std::string OwnerAfterwards(const std::string& userId) const;
};
NamedTemplate FindTemplateToReplace(const std::string& name, const std::string& userId);

}  // namespace vicenter::store
