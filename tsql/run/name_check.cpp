// Before anything of a text runs, its statements are translated: one that names a column or a function that
// there is not keeps all of the text from running, as on the server. What names a table that there is not is
// looked at when it is its turn; and what stands behind a definition, since that may be what it needs.

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>

#include "tsql/base/error_table.h"
#include "tsql/run/executor.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/output_columns.h"

namespace vicenter::tsql::engine {

namespace {

// Errors of names, and of columns that stand where they may not.
bool IsOfNames(std::int32_t number) {
    constexpr std::int32_t kNumbers[] = {107, 144, 147,  157,  164,  174,  189, 195,
                                         207, 209, 4104, 8120, 8121, 8124, 8127};
    return std::find(std::begin(kNumbers), std::end(kNumbers), number) != std::end(kNumbers);
}

// The catalog and the #tables, as one number.
std::uint64_t WhereNamesAre(const Catalog& catalog) {
    constexpr std::uint64_t kStep = 0x9E3779B97F4A7C15;
    std::uint64_t number = catalog.Generation();
    for (const std::string& name : catalog.TemporaryNames()) {
        if (name.front() != '#') continue;
        number = number * kStep + std::hash<std::string>()(name);
        number = number * kStep + static_cast<std::uint64_t>(catalog.FindTable(name)->definition);
    }
    return number;
}

}  // namespace

void Executor::CheckNames(Program& program, const std::vector<StatementPtr>& statements) {
    const std::uint64_t now = WhereNamesAre(CatalogNow());
    if (program.namesCheckedAt == now) return;
    // A statement by itself tells its errors when it runs.
    const bool isAlone = statements.size() == 1 && IsPlain(*statements.front());
    if (!isAlone) CheckNamesIn(statements);
    program.namesCheckedAt = now;
}

bool Executor::IsPlain(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kIf:
        case StatementKind::kWhile:
        case StatementKind::kBlock:
        case StatementKind::kTryCatch:
            return false;
        default:
            return true;
    }
}

// False when what follows may rest on what has been found.
bool Executor::CheckNamesIn(const std::vector<StatementPtr>& statements) {
    return std::ranges::all_of(statements,
                               [this](const StatementPtr& statement) { return CheckNamesOf(*statement); });
}

template <class Work>
void Executor::CheckNamesBy(const Statement& statement, const Work& work) {
    try {
        Translated(work);
    } catch (SqlError& error) {
        unbound_ = false;
        if (!IsOfNames(error.Number())) return;
        // The first place of all is no place.
        if (error.Details().line <= 1 && error.Details().column <= 1)
            error.SetLine(static_cast<std::int32_t>(statement.position.line));
        throw;
    }
}

// OUTPUT names what the rows bring along.
template <class Work>
void Executor::CheckTold(const Statement& statement, const OutputClause& output, bool hasAction,
                         const Work& rows) {
    const TableInfo* table = nullptr;
    std::vector<ToldSource> told;
    CheckNamesBy(statement, [&](Translator& translator) {
        Translation translation = rows(translator);
        table = catalog_.FindTable(translation.table);
        told = translation.told;
        return translation;
    });
    if (table == nullptr) return;
    CheckNamesBy(statement, [&](Translator& translator) {
        return translator.OutputOfRow(output, *table, told, hasAction);
    });
}

bool Executor::CheckNamesOf(const Statement& statement) {
    const auto check = [&](const auto& work) { CheckNamesBy(statement, work); };
    const auto condition = [&](const Expr& one) {
        check([&](Translator& translator) { return translator.Condition(one); });
    };
    switch (statement.kind) {
        case StatementKind::kSelect: {
            const Query& query = *As<SelectStatement>(statement).query;
            if (!FirstSelect(*query.body).into.IsEmpty()) return false;
            check([&](Translator& translator) { return translator.Select(query); });
            return true;
        }
        case StatementKind::kInsert: {
            const auto& insert = As<InsertStatement>(statement);
            if (insert.source == InsertSource::kExecute) return false;
            check([&](Translator& translator) { return translator.Insert(insert); });
            return true;
        }
        case StatementKind::kUpdate: {
            const auto& update = As<UpdateStatement>(statement);
            if (!update.output || TellsOnlyOf("inserted", *update.output, !update.from.empty())) {
                check([&](Translator& translator) { return translator.Update(update); });
            } else {
                CheckTold(update, *update.output, false,
                          [&](Translator& translator) { return translator.UpdatedRows(update); });
            }
            return true;
        }
        case StatementKind::kDelete: {
            const auto& deletion = As<DeleteStatement>(statement);
            if (!deletion.output || TellsOnlyOf("deleted", *deletion.output, !deletion.from.empty())) {
                check([&](Translator& translator) { return translator.Delete(deletion); });
            } else {
                CheckTold(deletion, *deletion.output, false,
                          [&](Translator& translator) { return translator.DeletedRows(deletion); });
            }
            return true;
        }
        case StatementKind::kSetVariable:
            check([&](Translator& translator) {
                return translator.Expression(*As<SetVariableStatement>(statement).value);
            });
            return true;
        case StatementKind::kBlock:
            return CheckNamesIn(As<BlockStatement>(statement).statements);
        case StatementKind::kIf: {
            const auto& branch = As<IfStatement>(statement);
            condition(*branch.condition);
            const bool goesOn = CheckNamesOf(*branch.then);
            return goesOn && (!branch.otherwise || CheckNamesOf(*branch.otherwise));
        }
        case StatementKind::kWhile:
            condition(*As<WhileStatement>(statement).condition);
            return CheckNamesOf(*As<WhileStatement>(statement).body);
        case StatementKind::kTryCatch:
            return CheckNamesIn(As<TryCatchStatement>(statement).tried) &&
                   CheckNamesIn(As<TryCatchStatement>(statement).caught);
        case StatementKind::kMerge: {
            const auto& merge = As<MergeStatement>(statement);
            const auto rows = [&](Translator& translator) { return translator.MergeRows(merge); };
            if (merge.output) {
                CheckTold(merge, *merge.output, true, rows);
            } else {
                check(rows);
            }
            return true;
        }
        case StatementKind::kDeclareCursor:
            check([&](Translator& translator) {
                return translator.Select(*As<DeclareCursorStatement>(statement).cursor.query);
            });
            return true;
        case StatementKind::kDeclare:
        case StatementKind::kNoOperation:
        case StatementKind::kSetCursor:
        case StatementKind::kOpenCursor:
        case StatementKind::kFetch:
        case StatementKind::kCloseCursor:
        case StatementKind::kDeallocate:
        case StatementKind::kBreak:
        case StatementKind::kContinue:
        case StatementKind::kReturn:
        case StatementKind::kPrint:
        case StatementKind::kRaiserror:
        case StatementKind::kThrow:
        case StatementKind::kTransaction:
        case StatementKind::kTruncate:
        case StatementKind::kWaitFor:
            return true;
        default:
            return false;
    }
}

}  // namespace vicenter::tsql::engine
