#include "platform/ado/recordset.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "automation/enumeration.h"
#include "platform/ado/connection.h"

namespace vicenter::ado {

using automation::Arguments;
using automation::Error;
using automation::MemberTable;

namespace {

constexpr const char* kItemNotFoundText =
    "Item cannot be found in the collection corresponding to the requested name or ordinal.";
constexpr const char* kNoCurrentRecordText =
    "Either BOF or EOF is True, or the current record has been deleted. Requested operation requires a "
    "current record.";
constexpr const char* kObjectClosedText = "Operation is not allowed when the object is closed.";
constexpr const char* kSource = "ADODB.Recordset";

// ADO's states of an object.
constexpr std::int32_t kStateClosed = 0;
constexpr std::int32_t kStateOpen = 1;

[[noreturn]] void ThrowItemNotFound() {
    throw Error(error_number::kItemNotFound, kItemNotFoundText, kSource);
}

// A column by the index or the name that an automation client gives.
std::size_t ColumnOf(const Recordset& recordset, const Variant& key) {
    if (key.IsText()) return recordset.ColumnIndex(key.AsText());
    const std::int64_t index = key.ToInt64();
    if (index < 0 || static_cast<std::uint64_t>(index) >= recordset.ColumnCount()) ThrowItemNotFound();
    return static_cast<std::size_t>(index);
}

std::shared_ptr<Recordset> Shared(Recordset& recordset) {
    return std::static_pointer_cast<Recordset>(recordset.shared_from_this());
}

void RequireOpen(const Recordset& recordset) {
    if (!recordset.IsOpen()) throw Error(error_number::kObjectClosed, kObjectClosedText, kSource);
}

Variant CountAsVariant(std::int64_t count) {
    if (count <= std::numeric_limits<std::int32_t>::max()) return Variant(static_cast<std::int32_t>(count));
    return Variant(count);
}

}  // namespace

Field::Field(RecordsetRef recordset, std::size_t column)
    : recordset_(std::move(recordset)), column_(column) {}

const MemberTable<Field>& Field::Members() {
    static const MemberTable<Field> table{
        automation::Property<Field>("Value", [](Field& self, Arguments&) { return self.Value(); })
            .AsDefault(),
        automation::Property<Field>("Name", [](Field& self, Arguments&) { return Variant(self.Name()); }),
        automation::Property<Field>(
            "Type", [](Field& self, Arguments&) { return Variant(static_cast<std::int32_t>(self.Type())); }),
    };
    return table;
}

const std::string& Field::Name() const {
    return recordset_->Columns()[column_].name;
}

const Variant& Field::Value() const {
    return recordset_->Value(column_);
}

DataType Field::Type() const {
    return recordset_->Columns()[column_].type;
}

const MemberTable<Fields>& Fields::Members() {
    static const MemberTable<Fields> table{
        automation::IndexedProperty<Fields>(
            "Item", {"index"},
            [](Fields& self, Arguments& arguments) {
                const std::size_t column = ColumnOf(*self.recordset_, arguments[0].Value());
                return Variant(std::make_shared<Field>(self.recordset_, column));
            })
            .AsDefault(),
        automation::Property<Fields>("Count",
                                     [](Fields& self, Arguments&) {
                                         return Variant(
                                             static_cast<std::int32_t>(self.recordset_->ColumnCount()));
                                     }),
    };
    return table;
}

std::unique_ptr<automation::Enumerator> Fields::NewEnumerator() {
    return automation::OverItems(*this, 0);
}

Recordset::Recordset(std::vector<Column> columns) : columns_(std::move(columns)), open_(true) {}

Recordset::~Recordset() {
    // One result after the other, as far as nobody else holds them.
    RecordsetRef rest = std::move(next_);
    while (rest && rest.use_count() == 1)
        rest = RecordsetRef(std::move(rest->next_));
}

const MemberTable<Recordset>& Recordset::Members() {
    static const MemberTable<Recordset> table{
        automation::IndexedProperty<Recordset>(
            "Fields", {"index?"},
            [](Recordset& self, Arguments& arguments) {
                RequireOpen(self);
                const Variant& index = arguments[0].Value();
                if (index.IsMissing()) return Variant(std::make_shared<ado::Fields>(Shared(self)));
                return Variant(std::make_shared<Field>(Shared(self), ColumnOf(self, index)));
            })
            .AsDefault(),
        automation::Property<Recordset>("RecordCount",
                                        [](Recordset& self, Arguments&) {
                                            RequireOpen(self);
                                            return CountAsVariant(self.RecordCount());
                                        }),
        automation::Property<Recordset>("EOF",
                                        [](Recordset& self, Arguments&) {
                                            RequireOpen(self);
                                            return Variant(self.AtEnd());
                                        }),
        automation::Property<Recordset>("BOF",
                                        [](Recordset& self, Arguments&) {
                                            RequireOpen(self);
                                            return Variant(self.AtBegin());
                                        }),
        automation::Property<Recordset>(
            "State",
            [](Recordset& self, Arguments&) { return Variant(self.IsOpen() ? kStateOpen : kStateClosed); }),
        automation::Method<Recordset>("MoveFirst", {},
                                      [](Recordset& self, Arguments&) {
                                          self.MoveFirst();
                                          return Variant();
                                      }),
        automation::Method<Recordset>("MoveNext", {},
                                      [](Recordset& self, Arguments&) {
                                          self.MoveNext();
                                          return Variant();
                                      }),
        automation::Method<Recordset>(
            "NextRecordset", {},
            [](Recordset& self, Arguments&) { return Variant(automation::ObjectRef(self.Next())); }),
        automation::Method<Recordset>("Close", {},
                                      [](Recordset& self, Arguments&) {
                                          RequireOpen(self);
                                          self.columns_.clear();
                                          self.values_.clear();
                                          self.rows_ = 0;
                                          self.position_ = 0;
                                          self.open_ = false;
                                          return Variant();
                                      }),
    };
    return table;
}

void Recordset::Reserve(std::size_t rows) {
    values_.reserve(rows * columns_.size());
}

void Recordset::AppendRow(std::vector<Variant> values) {
    std::move(values.begin(), values.end(), AppendRow().begin());
}

std::span<Variant> Recordset::AppendRow() {
    const std::size_t begin = values_.size();
    values_.resize(begin + columns_.size());
    ++rows_;
    return std::span(values_).subspan(begin);
}

std::int64_t Recordset::RecordCount() const {
    return open_ ? static_cast<std::int64_t>(rows_) : -1;
}

void Recordset::MoveFirst() {
    RequireOpen(*this);
    // An empty recordset stays at both ends, so that a loop may begin with MoveFirst without asking.
    position_ = 0;
}

void Recordset::MoveNext() {
    RequireOpen(*this);
    if (AtEnd()) throw Error(error_number::kNoCurrentRecord, kNoCurrentRecordText, kSource);
    ++position_;
}

std::size_t Recordset::ColumnIndex(std::string_view name) const {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        if (automation::SameName(columns_[i].name, name)) return i;
    }
    ThrowItemNotFound();
}

const Variant& Recordset::Value(std::size_t column) const {
    RequireOpen(*this);
    if (column >= columns_.size()) ThrowItemNotFound();
    if (AtEnd()) throw Error(error_number::kNoCurrentRecord, kNoCurrentRecordText, kSource);
    return ValueAt(position_, column);
}

}  // namespace vicenter::ado
