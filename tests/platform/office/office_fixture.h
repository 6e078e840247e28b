#pragma once

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/office/cell_text.h"
#include "platform/office/workbook_file.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::office {

inline std::string FileBytes(const std::string& name) {
    std::ifstream file(system::PathFromUtf8(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteBytes(const std::string& name, const std::string& bytes) {
    std::ofstream file(system::PathFromUtf8(name), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

inline std::string KindName(FileKind kind) {
    return kind == FileKind::Xls ? "xls" : "xlsx";
}

// Both kinds of file behave alike unless a test says otherwise.
class BothKinds : public testing::TestWithParam<FileKind> {
  protected:
    std::string FileName(const std::string& stem = "book") const {
        return folder_.File(stem + "." + KindName(GetParam()));
    }
    std::unique_ptr<Workbook> SavedAndReadAgain(const Workbook& workbook) const {
        WriteWorkbook(workbook, FileName(), GetParam());
        return ReadWorkbook(FileName());
    }

    fakes::TemporaryFolder folder_;
};

inline void SetText(Workbook& workbook, Sheet& sheet, std::uint32_t row, std::uint32_t column,
                    std::string_view text) {
    Cell& cell = sheet.At(row, column);
    cell.kind = CellKind::Text;
    cell.text = workbook.Texts().Intern(text);
}

inline void SetNumber(Sheet& sheet, std::uint32_t row, std::uint32_t column, double number) {
    Cell& cell = sheet.At(row, column);
    cell.kind = CellKind::Number;
    cell.number = number;
}

inline std::string TextAt(const Workbook& workbook, const Sheet& sheet, std::uint32_t row,
                          std::uint32_t column) {
    const Cell* cell = sheet.Find(row, column);
    return cell == nullptr ? "(none)" : CellText(workbook, *cell);
}

}  // namespace vicenter::office
