#pragma once

// Our objects as COM sees them: IDispatch by names, with ISupportErrorInfo.
//
// An object has one IDispatch as long as anybody holds that, so that a client's comparison of identities
// holds. Objects belong to the thread that gave them out; another one is answered RPC_E_WRONG_THREAD, and
// what it gives back last ends on the object's own.

#include <span>

#include "automation/object.h"
#include "platform/com/com_headers.h"
#include "platform/com/com_pointer.h"

namespace vicenter::com {

// A new share in the object's IDispatch; none for no object. Somebody else's object is given back as it came.
IDispatch* NewDispatch(const automation::ObjectRef& object);

// Our object behind an IDispatch of ours, else one that calls the foreign one.
automation::ObjectRef ObjectOf(IDispatch* dispatch);

// The interfaces that early-bound clients ask the objects of a class for: each is IDispatch under a name of
// its own.
struct EarlyInterface {
    const char* typeName;
    IID id;
};
// Kept as it is given, before the first object is given out.
void AnswerAlsoAs(std::span<const EarlyInterface> interfaces);

// Objects that clients hold at present, in the whole process.
long LiveDispatches();

}  // namespace vicenter::com
