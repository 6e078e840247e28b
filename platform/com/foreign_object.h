#pragma once

// Somebody else's object, called late-bound at the point of use: GetIDsOfNames, then Invoke.
//
// A call that a busy server rejects is tried again for some seconds, and so is the making of an object by a
// server that is just ending. User-interface thread.

#include "automation/object.h"
#include "platform/com/com_headers.h"
#include "platform/com/com_pointer.h"

namespace vicenter::com {

class ForeignObject final : public automation::Object {
  public:
    explicit ForeignObject(ComPointer<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {}

    // The class's name as the object's type information tells it; "Object" where there is none, "Dictionary"
    // for one with a dictionary's members.
    std::string TypeName() const override;
    bool HasMember(std::string_view name) const override;
    automation::Variant Invoke(std::string_view name, automation::InvokeKind kind,
                               automation::Arguments& arguments) override;
    std::unique_ptr<automation::Enumerator> NewEnumerator() override;

    IDispatch* NewShare() const { return ComPointer<IDispatch>(dispatch_).Detach(); }

  private:
    ComPointer<IDispatch> dispatch_;
};

// By ProgID from the system's registry; Error 429 when there is none or it cannot be started.
automation::ObjectRef CreateForeign(std::string_view progId);

}  // namespace vicenter::com
