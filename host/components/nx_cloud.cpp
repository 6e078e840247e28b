// VelaFRAPI.NXCloud: the users' cloud drives, which this host keeps in a folder.

#include "automation/member_table.h"
#include "host/components/cloud_folder.h"
#include "host/components/components.h"
#include "platform/system/files.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::ObjectRef;
using automation::Variant;

namespace {

constexpr std::int32_t kFolderNotFound = 2002;
constexpr std::int32_t kFailed = -1;

// What an upload has made.
class UploadResult final : public automation::TableObject<UploadResult> {
  public:
    UploadResult(std::int32_t folder, std::int32_t file, const std::string& name)
        : folder_(folder),
          file_(file),
          name_(system::PathToUtf8(system::PathFromUtf8(name).stem())),
          extension_(system::PathToUtf8(system::PathFromUtf8(name).extension())) {
        if (!extension_.empty()) extension_.erase(0, 1);
    }
    static const MemberTable<UploadResult>& Members() {
        static const MemberTable<UploadResult> table{
            automation::Property<UploadResult>(
                "folder_id", [](UploadResult& self, Arguments&) { return Variant(self.folder_); }),
            automation::Property<UploadResult>(
                "file_id", [](UploadResult& self, Arguments&) { return Variant(self.file_); }),
            automation::Property<UploadResult>(
                "name", [](UploadResult& self, Arguments&) { return Variant(self.name_); }),
            automation::Property<UploadResult>(
                "ext", [](UploadResult& self, Arguments&) { return Variant(self.extension_); }),
        };
        return table;
    }
    std::string TypeName() const override { return "UploadResult"; }

  private:
    std::int32_t folder_;
    std::int32_t file_;
    std::string name_;
    std::string extension_;
};

class NXCloud final : public automation::TableObject<NXCloud> {
  public:
    explicit NXCloud(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<NXCloud>& Members() {
        static const MemberTable<NXCloud> table{
            automation::Method<NXCloud>("NXDrive_CheckDir", {"userId", "parentId", "name"},
                                        [](NXCloud& self, Arguments& arguments) {
                                            return Variant(self.CheckDir(arguments[0].Value().ToInt32(),
                                                                         arguments[1].Value().ToInt32(),
                                                                         arguments[2].Value().ToText()));
                                        }),
            automation::Method<NXCloud>("NXDrive_NewDir", {"userId", "parentId", "name"},
                                        [](NXCloud& self, Arguments& arguments) {
                                            return Variant(self.NewDir(arguments[0].Value().ToInt32(),
                                                                       arguments[1].Value().ToInt32(),
                                                                       arguments[2].Value().ToText()));
                                        }),
            automation::Method<NXCloud>("NXDrive_PutFile", {"folderId", "path", "name"},
                                        [](NXCloud& self, Arguments& arguments) {
                                            return Variant(self.PutFile(arguments[0].Value().ToInt32(),
                                                                        arguments[1].Value().ToText(),
                                                                        arguments[2].Value().ToText()));
                                        }),
        };
        return table;
    }
    std::string TypeName() const override { return "NXCloud"; }

  private:
    // A host without a drive answers as one whose drive is out of order.
    bool HasDrive() const { return !session_->Settings().cloudFolder.empty(); }
    CloudFolder Drive() const { return CloudFolder(session_->Settings().cloudFolder); }

    std::int32_t CheckDir(std::int32_t user, std::int32_t parent, const std::string& name) const {
        return HasDrive() ? Drive().FindFolder(user, parent, name).value_or(kFolderNotFound) : kFailed;
    }
    std::int32_t NewDir(std::int32_t user, std::int32_t parent, const std::string& name) const {
        return HasDrive() ? Drive().MakeFolder(user, parent, name).value_or(kFailed) : kFailed;
    }
    // No object when the file could not be stored.
    ObjectRef PutFile(std::int32_t folder, const std::string& path, const std::string& name) const {
        const auto file = HasDrive() ? Drive().PutFile(folder, path, name) : std::nullopt;
        if (!file) return nullptr;
        return std::make_shared<UploadResult>(folder, *file, name);
    }

    HostSessionRef session_;
};

}  // namespace

ObjectRef MakeNxCloud(const HostSessionRef& session) {
    return std::make_shared<NXCloud>(session);
}

}  // namespace vicenter::host
