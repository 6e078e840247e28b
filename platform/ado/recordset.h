#pragma once

// A disconnected, in-memory recordset: it stays usable after its connection is gone.
//
// C++ callers use the typed members; automation clients the late-bound ones (RecordCount, EOF, BOF,
// MoveFirst, MoveNext, Fields, State, NextRecordset; the default member is Fields). Owned through
// RecordsetRef, user-interface thread only.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/member_table.h"
#include "automation/variant.h"

namespace vicenter::ado {

using automation::Variant;

// ADO's data type codes, as far as account sets use them.
enum class DataType : std::int32_t {
    kSmallInt = 2,
    kInteger = 3,
    kDouble = 5,
    kCurrency = 6,
    kBoolean = 11,
    kTinyInt = 17,
    kBigInt = 20,
    kGuid = 72,
    kBinary = 128,
    kChar = 129,
    kNumeric = 131,
    kTimeStamp = 135,
    kVarChar = 200,
    kLongVarChar = 201,
    kVarWChar = 202,
    kLongVarWChar = 203,
};

struct Column {
    std::string name;
    DataType type = DataType::kVarWChar;
    // The server's own name of the type, for instance "decimal(18,4)"; for typed headers of listings.
    std::string serverType;
};

class Recordset;
using RecordsetRef = std::shared_ptr<Recordset>;

// One column of the current row. Refers to its recordset, which it keeps alive.
class Field : public automation::TableObject<Field> {
  public:
    Field(RecordsetRef recordset, std::size_t column);
    static const automation::MemberTable<Field>& Members();
    std::string TypeName() const override { return "Field"; }

    const std::string& Name() const;
    const Variant& Value() const;
    DataType Type() const;

  private:
    RecordsetRef recordset_;
    std::size_t column_;
};

// The late-bound collection behind Recordset.Fields.
class Fields : public automation::TableObject<Fields> {
  public:
    explicit Fields(RecordsetRef recordset) : recordset_(std::move(recordset)) {}
    static const automation::MemberTable<Fields>& Members();
    std::string TypeName() const override { return "Fields"; }
    std::unique_ptr<automation::Enumerator> NewEnumerator() override;

  private:
    RecordsetRef recordset_;
};

class Recordset : public automation::TableObject<Recordset> {
  public:
    // An open recordset with columns, rows to be appended. Rows are stored column by column within each row.
    explicit Recordset(std::vector<Column> columns);
    // A closed recordset: the result of a statement that returns no rows.
    Recordset() = default;
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;
    ~Recordset() override;  // a batch may have given any number of results

    static const automation::MemberTable<Recordset>& Members();
    std::string TypeName() const override { return "Recordset"; }

    void Reserve(std::size_t rows);
    // values.size() must equal ColumnCount().
    void AppendRow(std::vector<Variant> values);
    // A new row of empty values, one a column, to be filled before the next is appended.
    std::span<Variant> AppendRow();

    bool IsOpen() const { return open_; }
    std::int64_t RecordCount() const;  // -1 for a closed recordset
    // No current row: behind the last, or before the first; an empty recordset is at both.
    bool AtEnd() const { return position_ >= rows_; }
    bool AtBegin() const { return rows_ == 0; }
    void MoveFirst();
    void MoveNext();  // at the end: error 3021

    const std::vector<Column>& Columns() const { return columns_; }
    std::size_t ColumnCount() const { return columns_.size(); }
    // The column of that name, compared without case; error 3265 when there is none.
    std::size_t ColumnIndex(std::string_view name) const;
    // A value of the current row; error 3021 when there is no current row, 3265 for an unknown column.
    const Variant& Value(std::size_t column) const;
    const Variant& Value(std::string_view name) const { return Value(ColumnIndex(name)); }
    // A value of any row, row counted from 0.
    const Variant& ValueAt(std::size_t row, std::size_t column) const {
        return values_[row * columns_.size() + column];
    }

    // The next result of the same batch; no object behind the last.
    const RecordsetRef& Next() const { return next_; }
    void SetNext(RecordsetRef next) { next_ = std::move(next); }

  private:
    std::vector<Column> columns_;
    std::vector<Variant> values_;
    std::size_t rows_ = 0;
    std::size_t position_ = 0;
    bool open_ = false;
    RecordsetRef next_;
};

}  // namespace vicenter::ado
