// VelaEBCGLView.GLData: the operation log.

#include "automation/member_table.h"
#include "entry/sql_text.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class GlData final : public automation::TableObject<GlData> {
  public:
    explicit GlData(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<GlData>& Members() {
        static const MemberTable<GlData> table{
            automation::Method<GlData>("WriteLog", {"functionCode", "kind", "text"},
                                       [](GlData& self, Arguments& arguments) {
                                           self.WriteLog(arguments[0].Value().ToText(),
                                                         arguments[1].Value().ToInt32(),
                                                         arguments[2].Value().ToText());
                                           return Variant(true);
                                       }),
        };
        return table;
    }
    std::string TypeName() const override { return "GLData"; }

  private:
    void WriteLog(const std::string& functionCode, std::int32_t kind, const std::string& text) const {
        // The text goes in as it is, blanks at its end included.
        session_->Execute(
            "insert into t_Log(FDate,FUserID,FFunctionID,FKind,FDescription) values(getdate()," +
            std::to_string(session_->Settings().userId) + "," + entry::SqlQuote(functionCode) + "," +
            std::to_string(kind) + "," + entry::SqlQuote(text, true, false) + ")");
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeGlData(const HostSessionRef& session) {
    return std::make_shared<GlData>(session);
}

}  // namespace vicenter::host
