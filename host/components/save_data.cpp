// VelaBillDataAccess.SaveData: the account set's record of files on the cloud drive.

#include "automation/member_table.h"
#include "entry/sql_text.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class SaveData final : public automation::TableObject<SaveData> {
  public:
    explicit SaveData(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<SaveData>& Members() {
        static const MemberTable<SaveData> table{
            automation::Method<SaveData>("InsertCDFile",
                                         {"propsString", "userId", "folderId", "folderName", "fileId", "name",
                                          "extension", "billId", "remark"},
                                         [](SaveData& self, Arguments& arguments) {
                                             self.InsertCDFile(arguments);
                                             return Variant(true);
                                         }),
        };
        return table;
    }
    std::string TypeName() const override { return "SaveData"; }

  private:
    // A file that is put over an older one keeps its id: its record is the latest one's.
    void InsertCDFile(const Arguments& arguments) const {
        const auto number = [&](std::size_t i) { return std::to_string(arguments[i].Value().ToInt32()); };
        const auto text = [&](std::size_t i) { return entry::SqlQuote(arguments[i].Value().ToText()); };
        const std::string fileId = number(4);
        session_->Execute("delete t_CloudFile where FFileID = " + fileId +
                          " insert into t_CloudFile(FFileID,FDate,FUserID,FFolderID,FFolderName,FName,FExt,"
                          "FBillID,FRemark) values(" +
                          fileId + ",getdate()," + number(1) + "," + number(2) + "," + text(3) + "," +
                          text(5) + "," + text(6) + "," + number(7) + "," + text(8) + ")");
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeSaveData(const HostSessionRef& session) {
    return std::make_shared<SaveData>(session);
}

}  // namespace vicenter::host
