#pragma once

// One row at a time: a template's name, its control rows, a user's column profile; and the master data that
// is asked for by id. What a batch writes is in template_batches.h. User-interface thread.

#include <cstdint>
#include <optional>
#include <string>

#include "platform/ado/recordset.h"

namespace vicenter::store {

// Whether the user has a template of that name; nothing when the account set does not answer.
std::optional<bool> UserHasTemplate(const std::string& name, const std::string& userId);
// False when the account set refuses, which the user has been shown.
bool RenameTemplate(const std::string& id, const std::string& name);
// The lines of a template as the account set holds them; nothing when they cannot be counted.
std::optional<std::int32_t> CountLines(const std::string& templateId);
std::string CountLinesSql(const std::string& templateId);
// FNo, FUseFrequency, FKey, FFileCount and FIsCanUsed of every number; no recordset on an error.
ado::RecordsetRef ReadControlRows(const std::string& templateId);

// The user's column profile, empty where none is stored; nothing when it cannot be read.
std::optional<std::string> ReadColumnProfile(const std::string& userId);
// An error is shown to the user.
void SaveColumnProfile(const std::string& userId, const std::string& profile);

// FName and FNumber of an account; no recordset on an error.
ado::RecordsetRef ReadAccount(const std::string& accountId);
// FUnitGroupID of an account that has one, else an empty recordset; none on an error.
ado::RecordsetRef ReadUnitGroup(const std::string& accountId);

}  // namespace vicenter::store
