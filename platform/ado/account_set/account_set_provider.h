#pragma once

// The provider "VelaAccountSet": the embedded account set as a data connection.
//
// Connect string: Provider=VelaAccountSet;Data Source=<file>, and
//   Create=yes            makes the file when it does not exist; without it a missing file is an error
//   Transactions=batch    a batch is one unit (default); none: each statement stands alone
//   Lock Timeout=<ms>     how long to wait for another process (default 5000)
//   Command Timeout=<s>   after how many seconds a batch is ended (default 30; 0: never)
//   Access=read           what would change the account set is refused (3906); write is the default
//   User ID=<name>        what USER_NAME() answers
//   Pooling=no            opens the file anew each time; otherwise sessions are kept and used again
// Process-wide, user-interface thread.

#include "platform/ado/connection.h"

namespace vicenter::ado {

inline constexpr const char* kAccountSetProvider = "VelaAccountSet";

// Registers the provider. Calling it again does no harm.
void RegisterAccountSetProvider();

// Brings what the kept sessions have written from their logs into the account sets' own files.
void RestAccountSets();

// Closes the kept sessions, for instance before their file is moved or deleted.
void CloseIdleAccountSets();

}  // namespace vicenter::ado
