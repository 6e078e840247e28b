#include "host/components/look_up_result.h"

#include "automation/member_table.h"

namespace vicenter::host {

using automation::Arguments;
using automation::Error;
using automation::MemberTable;
using automation::Property;
using automation::Variant;

namespace {

class LookUpResult final : public automation::TableObject<LookUpResult> {
  public:
    explicit LookUpResult(const LookUpChoice* chosen) : ok_(chosen != nullptr) {
        if (!ok_) return;
        value_ = chosen->value;
        record_ = chosen->record;
    }
    static const MemberTable<LookUpResult>& Members() {
        static const MemberTable<LookUpResult> table{
            Property<LookUpResult>("ReturnOK",
                                   [](LookUpResult& self, Arguments&) { return Variant(self.ok_); }),
            Property<LookUpResult>("ReturnValue", [](LookUpResult& self, Arguments&) { return self.value_; }),
            Property<LookUpResult>(
                "ReturnObject",
                [](LookUpResult& self, Arguments&) { return self.ok_ ? Variant(self.record_) : Variant(); }),
        };
        return table;
    }
    std::string TypeName() const override { return "LookUpResult"; }

  private:
    bool ok_;
    Variant value_;
    automation::ObjectRef record_;
};

std::optional<std::size_t> StartAt(const std::vector<LookUpChoice>& choices, const std::string& current) {
    if (current.empty()) return std::nullopt;
    std::optional<std::size_t> begins;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        const std::string& number = choices[i].shown.number;
        if (number == current) return i;
        if (!begins && number.starts_with(current)) begins = i;
    }
    return begins;
}

}  // namespace

const Variant* LookUpFields::Find(std::string_view name) const {
    for (const auto& [known, value] : values_) {
        if (automation::SameName(known, name)) return &value;
    }
    return nullptr;
}

Variant LookUpFields::Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) {
    if (kind == automation::InvokeKind::Put || arguments.size() != (name.empty() ? 1U : 0U)) {
        throw Error(automation::error_number::kWrongArgumentCount, {}, TypeName());
    }
    const Variant* value = Find(name.empty() ? arguments[0].Value().ToText() : std::string(name));
    if (value == nullptr) throw Error(automation::error_number::kNoSuchMember, {}, TypeName());
    return *value;
}

automation::ObjectRef AskForChoice(LookUpRequest request, const std::vector<LookUpChoice>& choices,
                                   const std::string& current) {
    const std::shared_ptr<LookUpDialog> dialog = LookUpDialog::Process();
    if (dialog == nullptr) return std::make_shared<LookUpResult>(nullptr);
    request.records.reserve(choices.size());
    for (const LookUpChoice& choice : choices)
        request.records.push_back(choice.shown);
    request.selected = StartAt(choices, current);
    const std::optional<std::size_t> chosen = dialog->Choose(request);
    const bool taken = chosen && *chosen < choices.size() && choices[*chosen].shown.selectable;
    return std::make_shared<LookUpResult>(taken ? &choices[*chosen] : nullptr);
}

}  // namespace vicenter::host
