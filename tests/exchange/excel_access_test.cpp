#include "exchange/excel_access.h"

#include "tests/exchange/exchange_fixture.h"

namespace vicenter::exchange {
namespace {

using automation::ObjectRef;

class ExcelAccessTest : public ExchangeTest {
  protected:
    void OpenExcel() {
        excel_ = automation::CreateObject("Excel.Application");
        workbook_ = excel_->Get("Workbooks").AsObject()->Call("Add").AsObject();
    }
    bool Save(const std::string& name, bool show = true) {
        errorText_.clear();
        return SaveWorkbookAs(excel_, workbook_, name, errorText_, show);
    }

    ObjectRef excel_;
    ObjectRef workbook_;
    std::string errorText_;
};

TEST_F(ExcelAccessTest, KeepsTheWholePartOfTheInstalledVersion) {
    office::RegisterExcelServer("12.7");
    EXPECT_TRUE(IsExcelInstalled());
    EXPECT_EQ(ExcelVersion(), 12);
    office::UnregisterExcelServer();
    EXPECT_FALSE(IsExcelInstalled());
    EXPECT_EQ(ExcelVersion(), 0);
}

TEST_F(ExcelAccessTest, SavesNothingWithoutServerOrWorkbook) {
    OpenExcel();
    EXPECT_FALSE(SaveWorkbookAs(nullptr, workbook_, folder_.File("a.xls"), errorText_, true));
    EXPECT_FALSE(SaveWorkbookAs(excel_, nullptr, folder_.File("a.xls"), errorText_, true));
    EXPECT_TRUE(Messages().empty());
}

TEST_F(ExcelAccessTest, SavesByExtensionThroughATemporaryFile) {
    for (const char* name : {"a.XLSX", "b.xls", "c"}) {
        OpenExcel();
        EXPECT_TRUE(Save(folder_.File(name))) << name;
        office::FileKind kind{};
        office::ReadWorkbook(folder_.File(name), &kind);
        EXPECT_EQ(kind, name == std::string("a.XLSX") ? office::FileKind::Xlsx : office::FileKind::Xls);
        EXPECT_TRUE(TemporaryFiles().empty());
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(ExcelAccessTest, AsksTheServerByNamedArguments) {
    Lines calls;
    const auto excel = std::make_shared<fakes::ScriptedObject>();
    excel->Value("Version", "14.0");
    const auto workbook = std::make_shared<fakes::ScriptedObject>();
    workbook->Value("Close", {});
    workbook->On("SaveAs", [&](Arguments& a) -> Variant {
        calls.clear();
        for (const auto& argument : a) {
            calls.push_back(argument.Name() +
                            (argument.Name() == "FileName" ? "" : "=" + argument.Value().ToText()));
            if (argument.Name() == "FileName") std::ofstream(argument.Value().ToText()) << "x";
        }
        return {};
    });
    EXPECT_TRUE(SaveWorkbookAs(excel, workbook, folder_.File("a.xlsx"), errorText_, true));
    EXPECT_EQ(calls, (Lines{"FileName", "AccessMode=3"}));
    EXPECT_TRUE(SaveWorkbookAs(excel, workbook, folder_.File("a.xls"), errorText_, true));
    EXPECT_EQ(calls, (Lines{"FileName", "FileFormat=-4143"}));
}

TEST_F(ExcelAccessTest, RefusesTheNewKindBelowVersion12) {
    office::RegisterExcelServer("11.0");
    OpenExcel();
    EXPECT_FALSE(Save(folder_.File("a.xlsx")));
    EXPECT_EQ(errorText_, "安装的Excel版本不支持xlsx格式！");
    EXPECT_EQ(Messages(), Lines{"安装的Excel版本不支持xlsx格式！"});
    EXPECT_EQ(LastTitle(), "Orbis提示");
    EXPECT_FALSE(Exists(folder_.File("a.xlsx")));
    EXPECT_FALSE(Save(folder_.File("a.xlsx"), false));
    EXPECT_EQ(Messages().size(), 1u);
}

TEST_F(ExcelAccessTest, ReplacesAWriteProtectedTarget) {
    const std::string target = folder_.File("a.xls");
    std::ofstream(target) << "old";
    std::filesystem::permissions(target, std::filesystem::perms::owner_read);
    OpenExcel();
    EXPECT_TRUE(Save(target));
    EXPECT_GT(std::filesystem::file_size(target), 100u);
}

TEST_F(ExcelAccessTest, TheTargetIsThereAtEveryMoment) {
    const std::string target = folder_.File("a.xls");
    std::ofstream(target) << "old";
    const auto before = std::filesystem::hard_link_count(target);
    const auto real = automation::CreateObject("Scripting.FileSystemObject");
    const auto files = fakes::RegisterScripted("Scripting.FileSystemObject");
    Lines missing;
    for (const char* name : {"GetExtensionName", "FileExists", "GetFile", "DeleteFile", "CopyFile",
                             "ReplaceFile", "GetSpecialFolder", "BuildPath"}) {
        files->On(name, [&, name](Arguments& a) {
            Variant result = real->Call(name, a);
            if (!Exists(target)) missing.emplace_back(name);
            return result;
        });
    }
    OpenExcel();
    EXPECT_TRUE(Save(target));
    EXPECT_EQ(missing, Lines{});
    EXPECT_EQ(before, std::filesystem::hard_link_count(target));
    EXPECT_GT(std::filesystem::file_size(target), 100u);
}

TEST_F(ExcelAccessTest, TellsWhatItWillNotWriteOver) {
    const std::string target = folder_.File("notes.txt");
    std::ofstream(target) << "old";
    OpenExcel();
    EXPECT_FALSE(Save(target));
    EXPECT_EQ(errorText_, "保存文件失败，原因：目标文件已存在，且不是工作簿，不能覆盖：" + target);
    EXPECT_TRUE(Messages().empty());
    EXPECT_EQ(std::filesystem::file_size(target), 3u);
}

TEST_F(ExcelAccessTest, LeavesATargetInUseAlone) {
    // A file that resists its removal, as one does that another program has open.
    const std::string target = folder_.File("a.xls");
    std::ofstream(target) << "old";
    const auto real = automation::CreateObject("Scripting.FileSystemObject");
    const auto files = fakes::RegisterScripted("Scripting.FileSystemObject");
    for (const char* name :
         {"GetExtensionName", "FileExists", "GetFile", "CopyFile", "GetSpecialFolder", "BuildPath"}) {
        files->On(name, [real, name](Arguments& a) { return real->Call(name, a); });
    }
    files->On("DeleteFile", [&](Arguments& a) -> Variant {
        if (a[0].Value().ToText() == target)
            throw automation::Error(automation::error_number::kPermissionDenied);
        return real->Call("DeleteFile", a);
    });
    OpenExcel();
    EXPECT_FALSE(Save(target));
    EXPECT_EQ(errorText_, "目标文件正在使用，无法引出!\r\n文件：" + target);
    EXPECT_EQ(Messages(), Lines{errorText_});
    EXPECT_EQ(LastTitle(), "Orbis提示");
    EXPECT_EQ(std::filesystem::file_size(target), 3u);
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ExcelAccessTest, TellsUnexpectedErrorsOnlyInTheErrorText) {
    OpenExcel();
    workbook_->Call("Close");
    EXPECT_FALSE(Save(folder_.File("a.xls")));
    EXPECT_EQ(errorText_, "保存文件失败，原因：工作簿已关闭！");
    EXPECT_TRUE(Messages().empty());
    EXPECT_TRUE(TemporaryFiles().empty());
}

TEST_F(ExcelAccessTest, FailsWhenTheTargetsFolderIsMissing) {
    OpenExcel();
    EXPECT_FALSE(Save(folder_.File("none/a.xls")));
    EXPECT_TRUE(errorText_.starts_with("保存文件失败，原因："));
    EXPECT_TRUE(TemporaryFiles().empty());
}

}  // namespace
}  // namespace vicenter::exchange
