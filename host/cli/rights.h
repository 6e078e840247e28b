#pragma once

// The right to change templates, for the commands that need it.

namespace vicenter::host {

class HostSession;

// The user holds every right of the ledger. On what has no rights, a database that is no account set yet,
// anybody does.
bool MayAdministrate(HostSession& session);

// As the window asks when it is loaded. A user without the right is told so.
bool CheckRight();

}  // namespace vicenter::host
