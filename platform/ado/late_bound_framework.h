#pragma once

// A host's own data-connection service, reached by member names alone, in the place of plain connections.
//
//   framework   GiveBroker()                    a broker; the one member that a framework must have
//               CreateObject(progId)            a component of the host; without it the process's classes
//   broker      Bind(propsString)
//               Auxiliary()                     kept as long as the broker; may be no object
//               Settle()                        before a query and after a statement; may be missing
//               GiveConnection()                the connection for the next statement
//   connection  Execute(text, recordsAffected, -1)   as ADO's: a recordset, closed or no object without rows
//               Errors                          ADO's collection, asked after a failure; may be missing
//   recordset   State (0 closed; may be missing), EOF, MoveNext, Fields (Count, Item by number: Name, Type,
//               Value), Close (may be missing). RecordCount is not asked: forward-only ones answer -1.
//
// Recordsets are read to their end at once. An error of the host's passes with its number and text.
// User-interface thread only.

#include <memory>

#include "platform/ado/host_connection_service.h"

namespace vicenter::ado {

std::shared_ptr<HostFramework> MakeLateBoundFramework(automation::ObjectRef framework);

}  // namespace vicenter::ado
