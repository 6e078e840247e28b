// Vela_APFC.FrameData: the usage record of the program frame.

#include "automation/member_table.h"
#include "entry/sql_text.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class FrameData final : public automation::TableObject<FrameData> {
  public:
    explicit FrameData(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<FrameData>& Members() {
        static const MemberTable<FrameData> table{
            automation::Property<FrameData>(
                "Propstring", [](FrameData& self, Arguments&) { return Variant(self.propsString_); },
                [](FrameData& self, Arguments& arguments) {
                    self.propsString_ = arguments[0].Value().ToText();
                }),
            automation::Method<FrameData>("WriteMGLog", {"code", "name"},
                                          [](FrameData& self, Arguments& arguments) {
                                              self.WriteMGLog(arguments[0].Value().ToText(),
                                                              arguments[1].Value().ToText());
                                              return Variant(true);
                                          }),
        };
        return table;
    }
    std::string TypeName() const override { return "FrameData"; }

  private:
    // The record belongs to the user whom the property string names, so that has to be set first.
    void WriteMGLog(const std::string& code, const std::string& name) const {
        session_->Execute("insert into t_FrameLog(FDate,FUserID,FCode,FName) values(getdate()," +
                          std::to_string(PropsUser(propsString_)) + "," + entry::SqlQuote(code) + "," +
                          entry::SqlQuote(name) + ")");
    }

    HostSessionRef session_;
    std::string propsString_;
};

}  // namespace

automation::ObjectRef MakeFrameData(const HostSessionRef& session) {
    return std::make_shared<FrameData>(session);
}

}  // namespace vicenter::host
