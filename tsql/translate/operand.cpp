// The text of an operand: as it is, as a value of another type, as a column keeps it.

#include "tsql/functions/function.h"
#include "tsql/translate/comparable.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

std::string Translator::AddParameter(Parameter parameter) {
    translation_.parameters.push_back(std::move(parameter));
    return "?" + std::to_string(translation_.parameters.size());
}

std::string Translator::ConvertCall(const std::string& sql, const SqlType& from, const SqlType& to,
                                    int style) const {
    return kConvertCall.Call({sql, Code(from), Code(to), std::to_string(style)});
}

std::string Translator::Render(const Operand& operand) {
    if (!operand.pending) return operand.sql;
    if (inlineLiterals_) {
        // A check constraint keeps its literals in its text.
        const engine::Value value =
            ValueOfLiteral(operand.pending->literal, operand.pending->text, operand.pending->negated);
        switch (value.Raw().index()) {
            case 1:
                return std::to_string(value.Int());
            case 2:
                return ConvertCall(QuotedText(operand.pending->text), SqlType::VarChar(100),
                                   SqlType::Float());
            case 3:
                return QuotedText(StoredDecimal(value.Exact()));
            case 5:
                return QuotedText(value.Text());
            default:
                throw MakeError(40510, {}, {"CHECK"});
        }
    }
    Parameter parameter = *operand.pending;
    parameter.to = parameter.from;
    return AddParameter(std::move(parameter));
}

std::string Translator::RenderAs(const Operand& operand, const SqlType& type, bool isExplicit) {
    if (operand.type.IsUnknown() && !operand.pending) return operand.sql;
    CheckConversion(operand.type, type, isExplicit);
    if (operand.pending && !inlineLiterals_) {
        Parameter parameter = *operand.pending;
        parameter.to = type;
        return AddParameter(std::move(parameter));
    }
    if (SameRepresentation(operand.type, type)) return Render(operand);
    if (operand.type.IsInteger() && type.kind == TypeKind::kFloat)
        return "CAST(" + Render(operand) + " AS REAL)";
    // An integer is written as the decimal of its value.
    if (operand.type.IsInteger() && type.kind == TypeKind::kDecimal &&
        SameRepresentation(AsDecimal(operand.type), type)) {
        return "CAST(" + Render(operand) + " AS TEXT)";
    }
    return ConvertCall(Render(operand), operand.type, type);
}

std::string Translator::RenderChosen(const Operand& operand, const SqlType& type) {
    // A literal by itself would be converted before it is known whether it is chosen.
    const bool mayFail = operand.pending && operand.type.IsText() && !type.IsText() && !inlineLiterals_;
    if (!mayFail) return RenderAs(operand, type);
    CheckConversion(operand.type, type, false);
    return ConvertCall(Render(operand), operand.type, type);
}

// Texts are compared whatever their length, decimals whatever their scale: the collations see to that.
std::string Translator::RenderCompared(const Operand& operand, const SqlType& common) {
    if (operand.type.IsUnknown() && !operand.pending) return operand.sql;
    if (common.IsText() && operand.type.IsText()) return Render(operand);
    if (common.IsBinary()) return kBytesCall.Call({RenderAs(operand, common)});
    if (common.IsExact()) {
        if (operand.type.IsExact()) return Render(operand);
        if (operand.type.IsInteger()) return RenderAs(operand, AsDecimal(operand.type));
        if (operand.type.IsText())
            return RenderAs(operand, common.IsMoney() ? common : SqlType::Decimal(38, 10));
    }
    if (common.IsInteger() && operand.type.IsInteger()) return Render(operand);
    return RenderAs(operand, common);
}

std::string Translator::RenderMember(const Operand& operand, const SqlType& common) {
    if (!common.IsText()) return RenderCompared(operand, common);
    if (!operand.pending || inlineLiterals_) return kMemberCall.Call({RenderCompared(operand, common)});
    Operand member = operand;
    member.pending->isMember = true;
    return RenderCompared(member, common);
}

std::string Translator::RenderStored(const Operand& operand, const TableInfo& table, const ColumnInfo& column,
                                     const char* operation) {
    CheckConversion(operand.type, column.type, false);
    const bool isKey = table.IsInUniqueKey(column.name);
    if (operand.pending) {
        Parameter parameter = *operand.pending;
        parameter.to = column.type;
        parameter.forColumn = true;
        parameter.table = table.FullName();
        parameter.column = column.name;
        parameter.nullable = column.nullable;
        parameter.isKey = isKey;
        parameter.operation = operation;
        return AddParameter(std::move(parameter));
    }
    const SqlType from = operand.type.IsUnknown() ? column.type : operand.type;
    return kPutCall.Call({Render(operand), Code(from), Code(column.type), column.nullable ? "1" : "0",
                          QuotedText(table.FullName()), QuotedText(column.name), QuotedText(operation),
                          isKey ? "1" : "0"});
}

std::string Translator::RenderGiven(const Operand& operand, const TableInfo& table, const ColumnInfo& column,
                                    const char* operation) {
    std::string stored = RenderStored(operand, table, column, operation);
    return column.identity ? kIdentityGivenCall.Call({stored}) : stored;
}

// Bytes are sorted and grouped without the zeros at their end, though they stay what they are where they
// show.
std::string Translator::Sorted(const Operand& operand) {
    CheckSorted(operand.type, {});
    return operand.type.IsBinary() ? kBytesCall.Call({Render(operand)}) : Collated(operand);
}

// SQLite would tell bytes apart that are equal on the server.
void Translator::RefuseBytes(const std::vector<Operand>& items, const char* clause, Position where) {
    for (const Operand& item : items) {
        if (item.type.kind == TypeKind::kVarBinary)
            throw MakeError(40510, where, {std::string(clause) + " of varbinary"});
    }
}

std::string Translator::Collated(const Operand& operand) {
    std::string sql = Render(operand);
    if (operand.type.IsGuid()) return sql + " COLLATE " + kGuidCollationName;
    if (operand.column) return sql;
    if (operand.type.IsText()) return sql + " COLLATE " + kTextCollationName;
    if (operand.type.IsExact()) return sql + " COLLATE " + kNumberCollationName;
    return sql;
}

}  // namespace vicenter::tsql::engine
