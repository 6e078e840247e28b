// What an import does last is done in destructors: nothing that fails there may end the host's process.

#include <new>

#include "exchange/import_template.h"
#include "tests/exchange/exchange_fixture.h"

namespace vicenter::exchange {
namespace {

// A file system that gets no memory for one of its members.
class FilesOutOfMemory : public automation::Object {
  public:
    explicit FilesOutOfMemory(std::string member) : member_(std::move(member)) {}

    std::string TypeName() const override { return files_->TypeName(); }
    bool HasMember(std::string_view name) const override { return files_->HasMember(name); }
    Variant Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) override {
        if (automation::SameName(name, member_)) throw std::bad_alloc();
        return files_->Invoke(name, kind, arguments);
    }

  private:
    std::string member_;
    std::shared_ptr<scripting::FileSystemObject> files_ = std::make_shared<scripting::FileSystemObject>();
};

class TemporaryCopyTest : public ExchangeTest, public testing::WithParamInterface<const char*> {};

TEST_P(TemporaryCopyTest, ItsEndNeverEndsTheProcess) {
    set_.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{8}}));
    set_.Answer("from t_VchTpControl where FIsCanUsed", Rows({"FNo"}));
    automation::ClassRegistry::Process().Register(
        "Scripting.FileSystemObject", [] { return std::make_shared<FilesOutOfMemory>(GetParam()); });
    const std::string file =
        MakeWorkbook("a.xlsx", {{"模板编号(*)", "摘要(*)", "借/贷(*)", "科目代码(*)", "科目名称(*)", "备注"},
                                {"#1", "一", "借", "1001", "库存现金"}});
    EXPECT_TRUE(ImportTemplateWorkbook(window_, file, -1, "甲").written);
    EXPECT_TRUE(TemporaryFiles().empty()) << "its mark removes it all the same";
}

INSTANTIATE_TEST_SUITE_P(Members, TemporaryCopyTest, testing::Values("DeleteFile"));

}  // namespace
}  // namespace vicenter::exchange
