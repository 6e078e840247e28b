#pragma once

// The class factories of the public classes. A class is made on the session's thread alone; another one is
// answered RPC_E_WRONG_THREAD.

#include "front/com/public_classes.h"

namespace vicenter::front {

// The interface `id` of a new factory.
HRESULT GetClassFactory(const PublicClass& made, REFIID id, void** result);

// LockServer() calls that keep the library loaded.
long ServerLocks();

}  // namespace vicenter::front
