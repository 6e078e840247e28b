#pragma once

// Care of an account set's file: copies, restoring, and looking for damage. Works beside sessions of this and
// of other processes.
//
// A copy is sealed: its table ts$digest holds a digest of every table and of the schema, so that a byte that
// has changed later is found although the file's structure is whole. The seal goes with the first change that
// a session makes, and when the copy is restored.

#include <string>
#include <vector>

#include "tsql/types/collation.h"

namespace vicenter::tsql::engine {

struct CareOptions {
    const TextCollation* collation = nullptr;  // outlives the call
    int lockTimeoutMilliseconds = 5000;
};

// Writes the account set, as of one moment, into an empty file, sealed. Not synced. Throws SqlError.
void CopyAccountSet(const std::string& from, const std::string& to, const CareOptions& options);

// Puts a copy's content in the place of an account set's; who has it open goes on with the new one. The copy
// loses its seal. Throws SqlError; the account set is as it was then.
void CopyOverAccountSet(const std::string& copy, const std::string& target, const CareOptions& options);

// Takes the seal off. Throws SqlError.
void UnsealAccountSet(const std::string& file, const CareOptions& options);

// A copy that is still sealed; false for whatever else the file is.
bool IsSealed(const std::string& file, const CareOptions& options);

// What is wrong with an account set, for users; empty when nothing was found. Never throws: what keeps it
// from being read is a finding, too.
std::vector<std::string> FindDamage(const std::string& file, const CareOptions& options);

}  // namespace vicenter::tsql::engine
