#pragma once

// The late-bound objects of the built-in Excel.Application and how they hang together.
//
// The application owns its workbooks until they are closed or it quits. Sheets and ranges keep their
// workbook's object alive, but a closed workbook or a deleted sheet answers every call with an error. Ranges
// are small and short-lived: a sheet hands the same one out again as soon as nobody else holds it.
// User-interface thread only.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "automation/member_table.h"
#include "platform/office/workbook.h"
#include "platform/office/workbook_file.h"

namespace vicenter::office {

using automation::Argument;
using automation::Arguments;
using automation::MemberTable;
using automation::ObjectRef;
using automation::TableObject;
using automation::Variant;

class ExcelRange;
class ExcelWorkbook;
class ExcelWorksheet;

class ExcelApplication : public TableObject<ExcelApplication> {
  public:
    explicit ExcelApplication(std::string version);
    ~ExcelApplication() override;
    static const MemberTable<ExcelApplication>& Members();
    std::string TypeName() const override { return "Application"; }

    // Whether this version knows ".xlsx" and its larger sheets.
    bool KnowsXlsx() const { return versionNumber_ >= 12; }
    std::uint32_t MaxRows() const { return KnowsXlsx() ? kMaxRows : kMaxXlsRows; }
    std::uint32_t MaxColumns() const { return KnowsXlsx() ? kMaxColumns : kMaxXlsColumns; }

    std::shared_ptr<ExcelWorkbook> AddWorkbook();
    std::shared_ptr<ExcelWorkbook> OpenWorkbook(const std::string& fileName);
    void Forget(const ExcelWorkbook* workbook);
    const std::vector<std::shared_ptr<ExcelWorkbook>>& Workbooks() const { return workbooks_; }
    std::shared_ptr<ExcelWorkbook> WorkbookAt(const Variant& index) const;
    // The last one opened, or no object.
    std::shared_ptr<ExcelWorkbook> ActiveWorkbook() const;
    void Activate(const ExcelWorkbook* workbook);
    void SetSelection(ObjectRef selection) { selection_ = std::move(selection); }
    void Quit();

  private:
    std::shared_ptr<ExcelApplication> Self() {
        return std::static_pointer_cast<ExcelApplication>(shared_from_this());
    }

    std::string version_;
    double versionNumber_ = 0;
    bool displayAlerts_ = true;
    bool visible_ = false;
    bool screenUpdating_ = true;
    int added_ = 0;
    std::vector<std::shared_ptr<ExcelWorkbook>> workbooks_;
    ObjectRef selection_;
};

class ExcelWorkbooks : public TableObject<ExcelWorkbooks> {
  public:
    explicit ExcelWorkbooks(std::shared_ptr<ExcelApplication> application)
        : application_(std::move(application)) {}
    static const MemberTable<ExcelWorkbooks>& Members();
    std::string TypeName() const override { return "Workbooks"; }
    std::unique_ptr<automation::Enumerator> NewEnumerator() override;

  private:
    std::shared_ptr<ExcelApplication> application_;
};

class ExcelWorkbook : public TableObject<ExcelWorkbook> {
  public:
    ExcelWorkbook(std::weak_ptr<ExcelApplication> application, std::unique_ptr<Workbook> content,
                  std::string name);
    static const MemberTable<ExcelWorkbook>& Members();
    std::string TypeName() const override { return "Workbook"; }

    // Throw automation::Error once the workbook is closed.
    Workbook& Content() const;
    std::shared_ptr<ExcelApplication> Application() const;

    std::shared_ptr<ExcelWorksheet> SheetObject(Sheet& sheet);
    std::shared_ptr<ExcelWorksheet> SheetAt(const Variant& index);
    std::shared_ptr<ExcelWorksheet> ActiveSheet();
    std::shared_ptr<ExcelWorksheet> AddSheet(Arguments& arguments);
    void DeleteSheet(Sheet& sheet);
    void ActivateSheet(const Sheet& sheet);
    void Close();
    void SetFile(std::string path, FileKind kind);
    const std::string& Name() const { return name_; }

  private:
    void SaveAs(Arguments& arguments);
    void Save();
    std::shared_ptr<ExcelWorkbook> Self() {
        return std::static_pointer_cast<ExcelWorkbook>(shared_from_this());
    }

    std::weak_ptr<ExcelApplication> application_;
    std::unique_ptr<Workbook> content_;
    std::string name_;
    std::string path_;
    FileKind kind_ = FileKind::Xlsx;
    std::map<const Sheet*, std::weak_ptr<ExcelWorksheet>> sheetObjects_;
};

class ExcelWorksheets : public TableObject<ExcelWorksheets> {
  public:
    explicit ExcelWorksheets(std::shared_ptr<ExcelWorkbook> workbook) : workbook_(std::move(workbook)) {}
    static const MemberTable<ExcelWorksheets>& Members();
    std::string TypeName() const override { return "Sheets"; }
    std::unique_ptr<automation::Enumerator> NewEnumerator() override;

  private:
    std::shared_ptr<ExcelWorkbook> workbook_;
};

class ExcelWorksheet : public TableObject<ExcelWorksheet> {
  public:
    ExcelWorksheet(std::shared_ptr<ExcelWorkbook> workbook, Sheet& sheet);
    static const MemberTable<ExcelWorksheet>& Members();
    std::string TypeName() const override { return "Worksheet"; }
    // Cells come by the million: they are answered before the table is asked.
    Variant Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) override;

    // Throws automation::Error once the sheet is deleted or its workbook is closed.
    Sheet& Content() const;
    const std::shared_ptr<ExcelWorkbook>& Book() const { return workbook_; }
    void MarkDeleted();

    std::shared_ptr<ExcelRange> MakeRange(const CellArea& area);
    // Rows and columns from 1; throws automation::Error outside of the sheet.
    CellArea AreaOfCell(const Variant& row, const Variant& column) const;
    CellArea AreaOfText(std::string_view reference) const;
    CellArea AreaOfColumns(const Variant& columns) const;
    CellArea AreaOfRows(const Variant& rows) const;
    CellArea WholeArea() const { return {0, 0, maxRows_ - 1, maxColumns_ - 1}; }

  private:
    CellArea AreaOfCorner(const Variant& corner) const;
    std::shared_ptr<ExcelWorksheet> Self() {
        return std::static_pointer_cast<ExcelWorksheet>(shared_from_this());
    }

    std::shared_ptr<ExcelWorkbook> workbook_;
    Sheet* sheet_;
    std::uint32_t maxRows_;
    std::uint32_t maxColumns_;
    // Holds this sheet in turn, which MarkDeleted() ends at the latest when the workbook is closed.
    std::shared_ptr<ExcelRange> spareRange_;
};

class ExcelRange : public TableObject<ExcelRange> {
  public:
    // What Count counts.
    enum class Pieces { Cells, Rows, Columns };

    ExcelRange(std::shared_ptr<ExcelWorksheet> sheet, const CellArea& area)
        : sheet_(std::move(sheet)), area_(area) {}
    static const MemberTable<ExcelRange>& Members();
    std::string TypeName() const override { return "Range"; }
    Variant Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) override;

    void Rebind(std::shared_ptr<ExcelWorksheet> sheet, const CellArea& area) {
        sheet_ = std::move(sheet);
        area_ = area;
        pieces_ = Pieces::Cells;
    }
    const CellArea& Area() const { return area_; }

    Variant Value() const;
    void SetValue(const Variant& value);
    std::string Text() const;
    // The format of the first cell, and one change applied to the format of every cell.
    CellFormat Format() const;
    void ChangeFormat(const std::function<void(CellFormat&)>& change);

  private:
    std::shared_ptr<ExcelRange> Part(const CellArea& area, Pieces pieces) const;
    bool IsSingleCell() const {
        return area_.firstRow == area_.lastRow && area_.firstColumn == area_.lastColumn;
    }
    bool IsWholeColumns() const;
    void AutoFit();
    std::string NumberFormat() const;
    void SetNumberFormat(std::string format);
    std::int32_t Count() const;
    std::shared_ptr<ExcelRange> CellAt(const Variant& row, const Variant& column) const;
    std::shared_ptr<ExcelRange> EntireColumn() const;
    std::string Address() const;
    // Of the first column, in characters of the standard font.
    double ColumnWidth() const;
    void SetColumnWidth(double width);
    bool IsHidden() const;
    void SetHidden(bool hidden);
    std::shared_ptr<ExcelRange> Self() { return std::static_pointer_cast<ExcelRange>(shared_from_this()); }

    std::shared_ptr<ExcelWorksheet> sheet_;
    CellArea area_;
    Pieces pieces_ = Pieces::Cells;
};

// Font, Borders and Interior of a range.
template <class Tag>
class ExcelLook : public TableObject<ExcelLook<Tag>> {
  public:
    explicit ExcelLook(std::shared_ptr<ExcelRange> range) : range_(std::move(range)) {}
    static const MemberTable<ExcelLook<Tag>>& Members();
    std::string TypeName() const override { return Tag::kName; }

  private:
    std::shared_ptr<ExcelRange> range_;
};

struct FontTag {
    static constexpr const char* kName = "Font";
};
struct BordersTag {
    static constexpr const char* kName = "Borders";
};
struct InteriorTag {
    static constexpr const char* kName = "Interior";
};
using ExcelFont = ExcelLook<FontTag>;
using ExcelBorders = ExcelLook<BordersTag>;
using ExcelInterior = ExcelLook<InteriorTag>;

[[noreturn]] void FailExcel(std::string text);

// Values between cells and late-bound callers. A text that is a number in its plain form becomes that number
// unless the cell is formatted as text; a leading apostrophe marks a text and is dropped; no text is ever a
// formula.
void SetCellValue(Workbook& workbook, Sheet& sheet, std::uint32_t row, std::uint32_t column,
                  const Variant& value);
Variant GetCellValue(const Workbook& workbook, const Cell* cell);

}  // namespace vicenter::office
