#include <algorithm>
#include <filesystem>

#include "automation/class_registry.h"
#include "automation/enumeration.h"
#include "automation/quietly.h"
#include "platform/office/excel_objects.h"
#include "platform/office/excel_page.h"
#include "platform/office/excel_server.h"

namespace vicenter::office {

namespace {

constexpr const char* kProgId = "Excel.Application";
// Versions before 15 began a workbook with three sheets.
constexpr double kFirstVersionWithOneSheet = 15;

std::string FileNameOf(const std::string& path) {
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? path : path.substr(separator + 1);
}

}  // namespace

void RegisterExcelServer(const std::string& version) {
    automation::ClassRegistry::Process().Register(
        kProgId, [version]() -> ObjectRef { return std::make_shared<ExcelApplication>(version); });
}

void UnregisterExcelServer() {
    automation::ClassRegistry::Process().Unregister(kProgId);
}

ExcelApplication::ExcelApplication(std::string version) : version_(std::move(version)) {
    versionNumber_ = automation::ParseDouble(version_).value_or(0);
}

ExcelApplication::~ExcelApplication() {
    automation::Quietly([this] { Quit(); });
}

const MemberTable<ExcelApplication>& ExcelApplication::Members() {
    using automation::IndexedProperty;
    using automation::Method;
    using automation::Property;
    static const MemberTable<ExcelApplication> table{
        IndexedProperty<ExcelApplication>("Workbooks", {"Index?"},
                                          [](ExcelApplication& self, Arguments& a) -> Variant {
                                              if (!a[0].Value().IsMissing())
                                                  return self.WorkbookAt(a[0].Value());
                                              return std::make_shared<ExcelWorkbooks>(self.Self());
                                          }),
        Property<ExcelApplication>(
            "Version", [](ExcelApplication& self, Arguments&) -> Variant { return self.version_; }),
        Property<ExcelApplication>("Name",
                                   [](ExcelApplication&, Arguments&) -> Variant { return "Microsoft Excel"; })
            .AsDefault(),
        Property<ExcelApplication>(
            "DisplayAlerts",
            [](ExcelApplication& self, Arguments&) -> Variant { return self.displayAlerts_; },
            [](ExcelApplication& self, Arguments& a) { self.displayAlerts_ = a[0].Value().ToBoolean(); }),
        Property<ExcelApplication>(
            "Visible", [](ExcelApplication& self, Arguments&) -> Variant { return self.visible_; },
            [](ExcelApplication& self, Arguments& a) { self.visible_ = a[0].Value().ToBoolean(); }),
        Property<ExcelApplication>(
            "ScreenUpdating",
            [](ExcelApplication& self, Arguments&) -> Variant { return self.screenUpdating_; },
            [](ExcelApplication& self, Arguments& a) { self.screenUpdating_ = a[0].Value().ToBoolean(); }),
        Property<ExcelApplication>(
            "ActiveWorkbook",
            [](ExcelApplication& self, Arguments&) -> Variant { return self.ActiveWorkbook(); }),
        Property<ExcelApplication>("ActiveSheet",
                                   [](ExcelApplication& self, Arguments&) -> Variant {
                                       const auto workbook = self.ActiveWorkbook();
                                       return workbook ? ObjectRef(workbook->ActiveSheet()) : ObjectRef();
                                   }),
        Property<ExcelApplication>("ActiveWindow",
                                   [](ExcelApplication& self, Arguments&) -> Variant {
                                       const auto workbook = self.ActiveWorkbook();
                                       if (!workbook) return ObjectRef();
                                       return std::make_shared<ExcelWindow>(workbook->ActiveSheet());
                                   }),
        Property<ExcelApplication>(
            "Selection", [](ExcelApplication& self, Arguments&) -> Variant { return self.selection_; }),
        Method<ExcelApplication>("Quit", {},
                                 [](ExcelApplication& self, Arguments&) -> Variant {
                                     self.Quit();
                                     return {};
                                 }),
    };
    return table;
}

std::shared_ptr<ExcelWorkbook> ExcelApplication::AddWorkbook() {
    auto content = std::make_unique<Workbook>();
    const int sheets = versionNumber_ < kFirstVersionWithOneSheet ? 3 : 1;
    for (int i = 1; i <= sheets; ++i)
        content->AddSheet("Sheet" + std::to_string(i));
    workbooks_.push_back(
        std::make_shared<ExcelWorkbook>(Self(), std::move(content), "Book" + std::to_string(++added_)));
    return workbooks_.back();
}

std::shared_ptr<ExcelWorkbook> ExcelApplication::OpenWorkbook(const std::string& fileName) {
    FileKind kind = FileKind::Xlsx;
    auto content = ReadWorkbook(fileName, &kind);
    if (kind == FileKind::Xlsx && !KnowsXlsx()) FailExcel("安装的Excel版本不支持xlsx格式！");
    auto workbook = std::make_shared<ExcelWorkbook>(Self(), std::move(content), FileNameOf(fileName));
    workbook->SetFile(fileName, kind);
    workbooks_.push_back(workbook);
    return workbook;
}

void ExcelApplication::Forget(const ExcelWorkbook* workbook) {
    selection_.reset();
    std::erase_if(workbooks_, [workbook](const auto& open) { return open.get() == workbook; });
}

std::shared_ptr<ExcelWorkbook> ExcelApplication::WorkbookAt(const Variant& index) const {
    for (std::size_t i = 0; i < workbooks_.size(); ++i) {
        const bool found = index.IsText() ? automation::SameName(workbooks_[i]->Name(), index.AsText())
                                          : index.ToInt32() == static_cast<std::int32_t>(i + 1);
        if (found) return workbooks_[i];
    }
    throw automation::Error(automation::error_number::kSubscriptOutOfRange, {}, "Microsoft Excel");
}

std::shared_ptr<ExcelWorkbook> ExcelApplication::ActiveWorkbook() const {
    return workbooks_.empty() ? nullptr : workbooks_.back();
}

void ExcelApplication::Activate(const ExcelWorkbook* workbook) {
    const auto place = std::find_if(workbooks_.begin(), workbooks_.end(),
                                    [workbook](const auto& open) { return open.get() == workbook; });
    if (place != workbooks_.end()) std::rotate(place, place + 1, workbooks_.end());
}

void ExcelApplication::Quit() {
    const auto open = std::move(workbooks_);
    workbooks_.clear();
    selection_.reset();
    for (const auto& workbook : open)
        workbook->Close();
}

const MemberTable<ExcelWorkbooks>& ExcelWorkbooks::Members() {
    using automation::IndexedProperty;
    using automation::Method;
    using automation::Property;
    static const MemberTable<ExcelWorkbooks> table{
        Method<ExcelWorkbooks>(
            "Add", {"Template?"},
            [](ExcelWorkbooks& self, Arguments&) -> Variant { return self.application_->AddWorkbook(); }),
        Method<ExcelWorkbooks>("Open",
                               {"Filename", "UpdateLinks?", "ReadOnly?", "Format?", "Password?",
                                "WriteResPassword?", "IgnoreReadOnlyRecommended?", "Origin?", "Delimiter?",
                                "Editable?", "Notify?", "Converter?", "AddToMru?", "Local?", "CorruptLoad?"},
                               [](ExcelWorkbooks& self, Arguments& a) -> Variant {
                                   return self.application_->OpenWorkbook(a[0].Value().ToText());
                               }),
        Method<ExcelWorkbooks>("Close", {},
                               [](ExcelWorkbooks& self, Arguments&) -> Variant {
                                   self.application_->Quit();
                                   return {};
                               }),
        Property<ExcelWorkbooks>("Count",
                                 [](ExcelWorkbooks& self, Arguments&) -> Variant {
                                     return static_cast<std::int32_t>(self.application_->Workbooks().size());
                                 }),
        IndexedProperty<ExcelWorkbooks>("Item", {"Index"},
                                        [](ExcelWorkbooks& self, Arguments& a) -> Variant {
                                            return self.application_->WorkbookAt(a[0].Value());
                                        })
            .AsDefault(),
    };
    return table;
}

std::unique_ptr<automation::Enumerator> ExcelWorkbooks::NewEnumerator() {
    return automation::OverItems(*this, 1);
}

}  // namespace vicenter::office
