#include <algorithm>

#include "automation/enumeration.h"
#include "platform/office/excel_objects.h"
#include "platform/office/utf.h"

namespace vicenter::office {

namespace {

// File-format codes that the program gives its file kinds.
constexpr std::int32_t kFormatNormal = -4143;
constexpr std::int32_t kFormatExcel9795 = 43;
constexpr std::int32_t kFormatExcel8 = 56;
constexpr std::int32_t kFormatOpenXml = 51;
constexpr std::int32_t kFirstAccessMode = 1;
constexpr std::int32_t kLastAccessMode = 3;

enum SaveAsArgument { kFileName, kFileFormat, kPassword, kWriteResPassword, kReadOnly, kBackup, kAccessMode };

std::string FileNameOf(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

}  // namespace

ExcelWorkbook::ExcelWorkbook(std::weak_ptr<ExcelApplication> application, std::unique_ptr<Workbook> content,
                             std::string name)
    : application_(std::move(application)), content_(std::move(content)), name_(std::move(name)) {
    if (const auto owner = application_.lock(); owner && !owner->KnowsXlsx()) kind_ = FileKind::Xls;
}

Workbook& ExcelWorkbook::Content() const {
    if (!content_) FailExcel("工作簿已关闭！");
    return *content_;
}

std::shared_ptr<ExcelApplication> ExcelWorkbook::Application() const {
    auto application = application_.lock();
    if (!application) FailExcel("工作簿已关闭！");
    return application;
}

const MemberTable<ExcelWorkbook>& ExcelWorkbook::Members() {
    using automation::IndexedProperty;
    using automation::Method;
    using automation::Property;
    const auto sheets = [](ExcelWorkbook& self, Arguments& a) -> Variant {
        if (!a[0].Value().IsMissing()) return self.SheetAt(a[0].Value());
        return std::make_shared<ExcelWorksheets>(self.Self());
    };
    static const MemberTable<ExcelWorkbook> table{
        IndexedProperty<ExcelWorkbook>("Worksheets", {"Index?"}, sheets),
        IndexedProperty<ExcelWorkbook>("Sheets", {"Index?"}, sheets),
        Property<ExcelWorkbook>("Name",
                                [](ExcelWorkbook& self, Arguments&) -> Variant { return self.name_; }),
        Property<ExcelWorkbook>("FullName",
                                [](ExcelWorkbook& self, Arguments&) -> Variant {
                                    return self.path_.empty() ? self.name_ : self.path_;
                                }),
        Property<ExcelWorkbook>("FileFormat",
                                [](ExcelWorkbook& self, Arguments&) -> Variant {
                                    return self.kind_ == FileKind::Xls ? kFormatNormal : kFormatOpenXml;
                                }),
        Property<ExcelWorkbook>(
            "ActiveSheet", [](ExcelWorkbook& self, Arguments&) -> Variant { return self.ActiveSheet(); }),
        Property<ExcelWorkbook>(
            "Application", [](ExcelWorkbook& self, Arguments&) -> Variant { return self.Application(); }),
        Method<ExcelWorkbook>("Activate", {},
                              [](ExcelWorkbook& self, Arguments&) -> Variant {
                                  self.Application()->Activate(&self);
                                  return {};
                              }),
        Method<ExcelWorkbook>("SaveAs",
                              {"Filename?", "FileFormat?", "Password?", "WriteResPassword?",
                               "ReadOnlyRecommended?", "CreateBackup?", "AccessMode?", "ConflictResolution?",
                               "AddToMru?", "TextCodepage?", "TextVisualLayout?", "Local?"},
                              [](ExcelWorkbook& self, Arguments& a) -> Variant {
                                  self.SaveAs(a);
                                  return {};
                              }),
        Method<ExcelWorkbook>("Save", {},
                              [](ExcelWorkbook& self, Arguments&) -> Variant {
                                  self.Save();
                                  return {};
                              }),
        Method<ExcelWorkbook>("Close", {"SaveChanges?", "Filename?", "RouteWorkbook?"},
                              [](ExcelWorkbook& self, Arguments& a) -> Variant {
                                  if (!a[0].Value().IsMissing() && a[0].Value().ToBoolean()) self.Save();
                                  self.Close();
                                  return {};
                              }),
    };
    return table;
}

std::shared_ptr<ExcelWorksheet> ExcelWorkbook::SheetObject(Sheet& sheet) {
    std::weak_ptr<ExcelWorksheet>& known = sheetObjects_[&sheet];
    auto object = known.lock();
    if (!object) {
        object = std::make_shared<ExcelWorksheet>(Self(), sheet);
        known = object;
    }
    return object;
}

std::shared_ptr<ExcelWorksheet> ExcelWorkbook::SheetAt(const Variant& index) {
    auto& sheets = Content().Sheets();
    if (index.IsText()) {
        if (Sheet* sheet = Content().FindSheet(index.AsText())) return SheetObject(*sheet);
    } else {
        const std::int32_t number = index.ToInt32();
        if (number >= 1 && static_cast<std::size_t>(number) <= sheets.size()) {
            return SheetObject(*sheets[static_cast<std::size_t>(number - 1)]);
        }
    }
    throw automation::Error(automation::error_number::kSubscriptOutOfRange, {}, "Microsoft Excel");
}

std::shared_ptr<ExcelWorksheet> ExcelWorkbook::ActiveSheet() {
    return SheetObject(*Content().Sheets()[Content().activeSheet]);
}

std::shared_ptr<ExcelWorksheet> ExcelWorkbook::AddSheet(Arguments& arguments) {
    Workbook& content = Content();
    const auto placeOf = [&](const Variant& value) {
        const auto object = std::dynamic_pointer_cast<ExcelWorksheet>(value.AsObject());
        if (!object) FailExcel("参数不是工作表！");
        const auto& sheets = content.Sheets();
        const auto place = std::find_if(sheets.begin(), sheets.end(),
                                        [&](const auto& sheet) { return sheet.get() == &object->Content(); });
        return static_cast<std::size_t>(place - sheets.begin());
    };
    std::size_t position = content.activeSheet;
    if (!arguments[0].Value().IsMissing()) {
        position = placeOf(arguments[0].Value());
    } else if (!arguments[1].Value().IsMissing()) {
        position = placeOf(arguments[1].Value()) + 1;
    }
    std::string name;
    std::size_t number = content.Sheets().size();
    do {
        name = "Sheet" + std::to_string(++number);
    } while (content.FindSheet(name) != nullptr);
    Sheet& sheet = content.AddSheet(name, position);
    ActivateSheet(sheet);
    return SheetObject(sheet);
}

void ExcelWorkbook::DeleteSheet(Sheet& sheet) {
    Workbook& content = Content();
    if (content.Sheets().size() < 2) FailExcel("工作簿至少要包含一张工作表！");
    if (const auto known = sheetObjects_.find(&sheet); known != sheetObjects_.end()) {
        if (const auto object = known->second.lock()) object->MarkDeleted();
        sheetObjects_.erase(known);
    }
    if (const auto application = application_.lock()) application->SetSelection(nullptr);
    std::erase_if(content.Sheets(), [&sheet](const auto& held) { return held.get() == &sheet; });
    content.activeSheet = std::min(content.activeSheet, content.Sheets().size() - 1);
}

void ExcelWorkbook::ActivateSheet(const Sheet& sheet) {
    Workbook& content = Content();
    for (std::size_t i = 0; i < content.Sheets().size(); ++i) {
        if (content.Sheets()[i].get() == &sheet) content.activeSheet = i;
    }
}

void ExcelWorkbook::Close() {
    const auto self = shared_from_this();  // the application may hold the last reference
    for (const auto& [sheet, weak] : sheetObjects_) {
        if (const auto object = weak.lock()) object->MarkDeleted();
    }
    sheetObjects_.clear();
    content_.reset();
    if (const auto application = application_.lock()) application->Forget(this);
}

void ExcelWorkbook::SetFile(std::string path, FileKind kind) {
    path_ = std::move(path);
    name_ = FileNameOf(path_);
    kind_ = kind;
}

void ExcelWorkbook::SaveAs(Arguments& arguments) {
    const auto given = [&arguments](SaveAsArgument argument) -> const Variant* {
        const Variant& value = arguments[argument].Value();
        return value.IsMissing() || value.IsEmpty() ? nullptr : &value;
    };
    FileKind kind = kind_;
    if (const Variant* format = given(kFileFormat)) {
        switch (format->ToInt32()) {
            case kFormatNormal:
            case kFormatExcel9795:
            case kFormatExcel8:
                kind = FileKind::Xls;
                break;
            case kFormatOpenXml:
                kind = FileKind::Xlsx;
                break;
            default:
                FailExcel("不支持的文件格式！");
        }
        if (kind == FileKind::Xlsx && !Application()->KnowsXlsx())
            FailExcel("安装的Excel版本不支持xlsx格式！");
    }
    if (const Variant* mode = given(kAccessMode)) {
        const std::int32_t number = mode->ToInt32();
        if (number < kFirstAccessMode || number > kLastAccessMode) FailExcel("AccessMode 参数无效！");
    }
    const Variant* fileName = given(kFileName);
    const std::string path = fileName != nullptr ? fileName->ToText() : path_;
    if (path.empty()) FailExcel("没有给出文件名！");
    WriteWorkbook(Content(), path, kind);
    SetFile(path, kind);
}

void ExcelWorkbook::Save() {
    if (path_.empty()) FailExcel("没有给出文件名！");
    WriteWorkbook(Content(), path_, kind_);
}

const MemberTable<ExcelWorksheets>& ExcelWorksheets::Members() {
    using automation::IndexedProperty;
    using automation::Method;
    using automation::Property;
    static const MemberTable<ExcelWorksheets> table{
        Property<ExcelWorksheets>("Count",
                                  [](ExcelWorksheets& self, Arguments&) -> Variant {
                                      return static_cast<std::int32_t>(
                                          self.workbook_->Content().Sheets().size());
                                  }),
        IndexedProperty<ExcelWorksheets>("Item", {"Index"},
                                         [](ExcelWorksheets& self, Arguments& a) -> Variant {
                                             return self.workbook_->SheetAt(a[0].Value());
                                         })
            .AsDefault(),
        Method<ExcelWorksheets>(
            "Add", {"Before?", "After?", "Count?", "Type?"},
            [](ExcelWorksheets& self, Arguments& a) -> Variant { return self.workbook_->AddSheet(a); }),
    };
    return table;
}

std::unique_ptr<automation::Enumerator> ExcelWorksheets::NewEnumerator() {
    return automation::OverItems(*this, 1);
}

}  // namespace vicenter::office
