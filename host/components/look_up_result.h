#pragma once

// What the look-up members hand back: ReturnOK, ReturnValue and ReturnObject, the chosen record by field
// name. Internal to the host's components. User-interface thread.

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/components/look_up_dialog.h"
#include "platform/ado/recordset.h"

namespace vicenter::host {

// A record with named values, read as members (record.Name) or by its default member (record("Name")).
class LookUpFields final : public automation::Object {
  public:
    using Values = std::vector<std::pair<std::string, automation::Variant>>;
    explicit LookUpFields(Values values) : values_(std::move(values)) {}
    std::string TypeName() const override { return "LookUpRecord"; }
    bool HasMember(std::string_view name) const override { return Find(name) != nullptr; }
    automation::Variant Invoke(std::string_view name, automation::InvokeKind kind,
                               automation::Arguments& arguments) override;

  private:
    const automation::Variant* Find(std::string_view name) const;
    Values values_;
};
using LookUpFieldsRef = std::shared_ptr<LookUpFields>;
inline LookUpFieldsRef MakeFields(LookUpFields::Values values) {
    return std::make_shared<LookUpFields>(std::move(values));
}

// One record of a look-up: what the dialog shows, and what is handed back when it is chosen.
struct LookUpChoice {
    LookUpRecord shown;
    automation::Variant value;  // ReturnValue
    LookUpFieldsRef record;     // ReturnObject
};

// Shows the choices in the process's dialog. The cursor starts at the record whose number is `current`, else
// at the first whose number begins with it. Without a dialog, or when the user cancels, ReturnOK is false and
// ReturnValue and ReturnObject are empty.
automation::ObjectRef AskForChoice(LookUpRequest request, const std::vector<LookUpChoice>& choices,
                                   const std::string& current = {});

}  // namespace vicenter::host
