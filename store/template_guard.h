#pragma once

// Questions put to the account set before a template is written to: is it still there, is it still whose it
// was, does it still hold what was read. They stand beside the statements of the commands and change nothing.
//
// What the user was asked about is a value, SeenTemplate. It is taken when the user is asked, and a command
// that writes finds out within its unit, in front of its batch, whether it still is that (KeptVersions, or
// NewTemplate for a name that was free): whatever waited in between, a question, a pipe, a look at what would
// change, nothing is written to anything else.
//
// An answer that could not be had is no answer: callers then write nothing. User-interface thread.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/ado/recordset.h"
#include "store/template_reading.h"

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

// A template as the user saw it.
struct SeenTemplate {
    std::string id;
    std::int32_t ownerId = 0;
    std::string name;
    std::optional<LinesDigest> lines = {};  // nothing: they are of no matter to the command
};
// One of the user's own, or the standard template.
SeenTemplate SeenAs(const std::string& id, const std::string& userId, const std::string& name,
                    std::optional<LinesDigest> lines = std::nullopt);

enum class TemplateFate {
    AsSeen,
    Changed,  // its lines or its name
    Gone,     // deleted, or its id belongs to another user's template now
    Unknown,  // the account set does not answer
};

// What has become of it. now is what a user who is asked once more is asked about.
struct FoundTemplate {
    TemplateFate fate = TemplateFate::Unknown;
    SeenTemplate now = {};

    bool HasOtherName(const SeenTemplate& seen) const;
};
FoundTemplate Compare(const SeenTemplate& seen, const std::optional<TemplateRow>& row);
// Asks, for the lines as well: now has them.
FoundTemplate LookAgain(const SeenTemplate& seen);
// For users, without an end: "模板 甲 已在别处被删除". fate is not AsSeen.
std::string WhatHappened(const SeenTemplate& seen, const FoundTemplate& found);
// Why a command has written nothing, with what it did not do: "没有引入".
std::string WhyNotWritten(const SeenTemplate& seen, const FoundTemplate& found, const std::string& undone);

// The first record of an answer as a template's row; nothing for no answer, or one without the columns.
std::optional<TemplateRow> RowOf(const ado::RecordsetRef& records);

// The standard template is everybody's, whatever its row says.
bool IsStandard(const std::string& templateId);
// True when the user may write to it: the user's own, or the standard template.
bool MayWrite(const TemplateRow& row, const std::string& templateId, const std::string& userId);

// A template was just inserted and its id read back as the largest one, which under a race is another's. True
// when the row of that id has the owner and the name that were inserted; lines and control rows that an
// earlier template of that id left behind are then gone.
bool ConfirmNewTemplate(const std::string& id, const std::string& userId, const std::string& name);

// The template of a name that an import or a generation would write to.
struct NamedTemplate {
    enum class State { None, MayWrite, Anothers, Unknown };
    State state = State::None;
    std::int32_t id = -1;
    std::int32_t ownerId = 0;
    SeenTemplate seen = {};  // where the user may write to it

    // Whom the template belongs to once it is written anew: the standard template stays everybody's.
    std::string OwnerAfterwards(const std::string& userId) const;
};
NamedTemplate FindTemplateToReplace(const std::string& name, const std::string& userId);

}  // namespace vicenter::store
