// Rows as one value: ts_pack puts rows into one, ts_rows is a table of what is in it. A subquery in FROM
// cannot refer to the tables beside it in SQLite; the argument of a table can.

#include <cstring>
#include <new>

#include "tsql/functions/call.h"
#include "tsql/types/collation.h"

namespace vicenter::tsql::engine {

namespace {

// What is packed: the number of columns, then value after value: a letter of its kind, and 8 bytes of a
// number or of a length with the bytes behind it.
constexpr char kNull = 'n';
constexpr char kInteger = 'i';
constexpr char kReal = 'r';
constexpr char kText = 't';
constexpr char kBlob = 'b';

template <class Number>
void PutNumber(std::string& packed, Number number) {
    static_assert(sizeof number == 8);
    char bytes[sizeof number];
    std::memcpy(bytes, &number, sizeof number);
    packed.append(bytes, sizeof number);
}

void PutBytes(std::string& packed, char kind, std::string_view bytes) {
    packed += kind;
    PutNumber(packed, static_cast<std::int64_t>(bytes.size()));
    packed += bytes;
}

void PutValue(std::string& packed, sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            packed += kInteger;
            return PutNumber(packed, static_cast<std::int64_t>(sqlite3_value_int64(value)));
        case SQLITE_FLOAT:
            packed += kReal;
            return PutNumber(packed, sqlite3_value_double(value));
        case SQLITE_TEXT:
        case SQLITE_BLOB: {
            const bool isText = sqlite3_value_type(value) == SQLITE_TEXT;
            const auto* bytes =
                static_cast<const char*>(isText ? sqlite3_value_text(value) : sqlite3_value_blob(value));
            const int size = sqlite3_value_bytes(value);
            if (bytes == nullptr && size > 0) throw std::bad_alloc();
            return PutBytes(packed, isText ? kText : kBlob, {bytes, static_cast<std::size_t>(size)});
        }
        default:
            packed += kNull;
    }
}

void PackStep(sqlite3_context* context, int count, sqlite3_value** arguments) {
    auto& services = *static_cast<FunctionServices*>(sqlite3_user_data(context));
    Guarded(context, services, [&] {
        auto** slot = static_cast<std::string**>(sqlite3_aggregate_context(context, sizeof(std::string*)));
        if (slot == nullptr) throw std::bad_alloc();
        if (*slot == nullptr) {
            *slot = new std::string();
            PutNumber(**slot, std::int64_t{count});
        }
        for (int i = 0; i < count; ++i)
            PutValue(**slot, arguments[i]);
    });
}

void PackFinal(sqlite3_context* context) {
    auto** slot = static_cast<std::string**>(sqlite3_aggregate_context(context, 0));
    if (slot == nullptr || *slot == nullptr) return;
    sqlite3_result_blob64(context, (*slot)->data(), (*slot)->size(), SQLITE_TRANSIENT);
    delete *slot;
    *slot = nullptr;
}

// ts_split(text, separator)
void SplitFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const std::string_view text = call.Text(0);
    const std::string_view separator = call.Text(1);
    // Whether a letter parts a text where its other case stands is not known.
    const std::string folded = call.Collation().Fold(separator);
    std::string packed;
    PutNumber(packed, std::int64_t{1});
    std::size_t parts = 1;
    for (std::size_t from = 0;;) {
        const std::size_t at = text.find(separator, from);
        PutBytes(packed, kText, text.substr(from, at == std::string_view::npos ? at : at - from));
        if (at == std::string_view::npos) break;
        ++parts;
        from = at + separator.size();
    }
    std::size_t alike = 1;
    const std::string whole = call.Collation().Fold(text);
    for (std::size_t at = whole.find(folded); at != std::string::npos;
         at = whole.find(folded, at + folded.size()))
        ++alike;
    if (alike != parts) throw MakeError(40510, {}, {"STRING_SPLIT by '" + std::string(separator) + "'"});
    sqlite3_result_blob64(call.Context(), packed.data(), packed.size(), SQLITE_TRANSIENT);
}

// ---- the table

struct RowsCursor : sqlite3_vtab_cursor {
    std::string packed;
    std::size_t next = 0;  // where the row after this one begins
    std::int64_t number = 0;
    std::int64_t columns = 0;
    std::vector<std::size_t> values;  // of this row: where each begins
    bool done = true;

    std::int64_t NumberAt(std::size_t at) const {
        std::int64_t value = 0;
        std::memcpy(&value, packed.data() + at, sizeof value);
        return value;
    }
    // Behind the value that begins there.
    std::size_t Behind(std::size_t at) const {
        constexpr std::size_t kHead = 1 + sizeof(std::int64_t);
        switch (packed[at]) {
            case kNull:
                return at + 1;
            case kText:
            case kBlob:
                return at + kHead + static_cast<std::size_t>(NumberAt(at + 1));
            default:
                return at + kHead;
        }
    }
    void Advance() {
        done = next >= packed.size();
        if (done) return;
        values.clear();
        for (std::int64_t i = 0; i < columns; ++i) {
            values.push_back(next);
            next = Behind(next);
        }
        ++number;
    }
};

// Runs what may run out of memory.
template <class Body>
int Safely(Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return SQLITE_NOMEM;
    }
}

int Connect(sqlite3* database, void*, int, const char* const*, sqlite3_vtab** table, char**) {
    return Safely([&] {
        std::string sql = "CREATE TABLE x(packed HIDDEN";
        for (int i = 1; i <= kMostPackedColumns; ++i)
            sql += ", c" + std::to_string(i);
        const int code = sqlite3_declare_vtab(database, (sql + ")").c_str());
        if (code == SQLITE_OK) *table = new sqlite3_vtab();
        return code;
    });
}

int Disconnect(sqlite3_vtab* table) {
    delete table;
    return SQLITE_OK;
}

int BestIndex(sqlite3_vtab*, sqlite3_index_info* info) {
    for (int i = 0; i < info->nConstraint; ++i) {
        const auto& constraint = info->aConstraint[i];
        if (constraint.iColumn != 0 || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ) continue;
        if (constraint.usable == 0) return SQLITE_CONSTRAINT;
        info->aConstraintUsage[i].argvIndex = 1;
        info->aConstraintUsage[i].omit = 1;
        info->estimatedCost = 10;
        info->estimatedRows = 10;
        return SQLITE_OK;
    }
    return SQLITE_CONSTRAINT;
}

int Open(sqlite3_vtab*, sqlite3_vtab_cursor** cursor) {
    return Safely([&] {
        *cursor = new RowsCursor();
        return SQLITE_OK;
    });
}

int Close(sqlite3_vtab_cursor* cursor) {
    delete static_cast<RowsCursor*>(cursor);
    return SQLITE_OK;
}

int Next(sqlite3_vtab_cursor* cursor) {
    return Safely([&] {
        static_cast<RowsCursor*>(cursor)->Advance();
        return SQLITE_OK;
    });
}

int Filter(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value** arguments) {
    return Safely([&] {
        auto& rows = *static_cast<RowsCursor*>(cursor);
        const auto* bytes = static_cast<const char*>(sqlite3_value_blob(arguments[0]));
        const auto size = static_cast<std::size_t>(sqlite3_value_bytes(arguments[0]));
        rows.packed.assign(bytes == nullptr ? "" : bytes, bytes == nullptr ? 0 : size);
        rows.number = 0;
        rows.columns = rows.packed.size() < sizeof(std::int64_t) ? 0 : rows.NumberAt(0);
        rows.next = rows.columns == 0 ? rows.packed.size() : sizeof(std::int64_t);
        rows.Advance();
        return SQLITE_OK;
    });
}

int Eof(sqlite3_vtab_cursor* cursor) {
    return static_cast<RowsCursor*>(cursor)->done ? 1 : 0;
}

int Column(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int number) {
    const auto& rows = *static_cast<RowsCursor*>(cursor);
    if (number < 1 || number > rows.columns) return SQLITE_OK;
    const std::size_t at = rows.values[static_cast<std::size_t>(number) - 1];
    constexpr std::size_t kHead = 1 + sizeof(std::int64_t);
    const char* bytes = rows.packed.data() + at + kHead;
    switch (rows.packed[at]) {
        case kInteger:
            sqlite3_result_int64(context, rows.NumberAt(at + 1));
            break;
        case kReal: {
            double value = 0;
            std::memcpy(&value, rows.packed.data() + at + 1, sizeof value);
            sqlite3_result_double(context, value);
            break;
        }
        case kText:
            sqlite3_result_text64(context, bytes, static_cast<sqlite3_uint64>(rows.NumberAt(at + 1)),
                                  SQLITE_TRANSIENT, SQLITE_UTF8);
            break;
        case kBlob:
            sqlite3_result_blob64(context, bytes, static_cast<sqlite3_uint64>(rows.NumberAt(at + 1)),
                                  SQLITE_TRANSIENT);
            break;
        default:
            break;
    }
    return SQLITE_OK;
}

int RowNumber(sqlite3_vtab_cursor* cursor, sqlite3_int64* number) {
    *number = static_cast<RowsCursor*>(cursor)->number;
    return SQLITE_OK;
}

const sqlite3_module& Module() {
    static const sqlite3_module module = [] {
        sqlite3_module made{};
        made.xConnect = Connect;
        made.xBestIndex = BestIndex;
        made.xDisconnect = Disconnect;
        made.xOpen = Open;
        made.xClose = Close;
        made.xFilter = Filter;
        made.xNext = Next;
        made.xEof = Eof;
        made.xColumn = Column;
        made.xRowid = RowNumber;
        return made;
    }();
    return module;
}

constexpr const SqlFunction* kOthers[] = {&kPackCall, &kSplitCall};

}  // namespace

const SqlFunction kPackCall = {"ts_pack", -1, nullptr, false, PackStep, PackFinal};
const SqlFunction kSplitCall = Scalar<SplitFunction>("ts_split", 2);

int RegisterRows(sqlite3* database) {
    return sqlite3_create_module_v2(database, kRowsTable, &Module(), nullptr, nullptr);
}

FunctionSet RowFunctions() {
    return {{}, kOthers};
}

}  // namespace vicenter::tsql::engine
