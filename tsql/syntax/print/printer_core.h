#pragma once

// What the print_*.cpp share. Internal to tsql/syntax.

#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast.h"

namespace vicenter::tsql {

class Printer {
  public:
    std::string Finish() { return std::move(out_); }

    // print_expression.cpp
    void Put(const Expr& expr, int lowest = 0);
    void PutCondition(const Expr& expr);
    void Put(const UnaryExpr& unary);
    void Put(const BinaryExpr& binary);
    void Put(const CaseExpr& choice);
    void Put(const FunctionExpr& function);
    void Put(const CastExpr& cast);
    void Put(const LogicalExpr& logical);
    void Put(const BetweenExpr& between);
    void Put(const LikeExpr& like);
    void Put(const InExpr& in);
    void Put(const QuantifiedExpr& quantified);
    void Put(const Name& name);
    void Put(const ObjectName& name);
    void Put(const TypeName& type);
    void PutNames(const std::vector<Name>& names);
    void PutNameList(const std::vector<Name>& names);  // " (a, b)", or nothing
    void PutList(const std::vector<ExprPtr>& list);
    void Put(const OverClause& over);
    void Put(const FrameBound& bound);

    // print_query.cpp
    void Put(const Query& query);
    void Put(const QueryBody& body);
    void PutTerm(const QueryBody& body);  // with parentheses around set operations
    void Put(const SelectBody& select);
    void Put(const SelectItem& item);
    void Put(const TopClause& top);
    void Put(const TableSource& source);
    void Put(const JoinedTable& join);
    void PutAlias(const Name& name, const std::vector<Name>& columns);
    void Put(const std::vector<GroupingItem>& grouping);
    void PutFrom(const std::vector<TableSourcePtr>& from);
    void PutPivoted(const TableSource& source);
    void Put(const PivotTable& pivot);
    void Put(const UnpivotTable& unpivot);
    void PutWith(const std::vector<CommonTable>& with);
    void PutOrderBy(const std::vector<OrderItem>& items);
    void PutHints(const std::vector<std::string>& hints);
    void PutOptions(const std::vector<std::string>& options);
    void Put(const OutputClause& output);

    // print_definition.cpp
    void Put(const TableDefinition& definition);
    void Put(const ColumnDefinition& column);
    void Put(const Constraint& constraint, bool ofColumn);
    void PutIndexColumns(const std::vector<IndexColumn>& columns);
    void PutClustered(const std::optional<bool>& clustered);
    void Put(const CreateTableStatement& create);
    void Put(const AlterTableStatement& alter);
    void Put(const CreateIndexStatement& create);
    void Put(const CreateViewStatement& create);
    void Put(const CreateProcedureStatement& create);
    void Put(const DropStatement& drop);

    // print_statement.cpp
    void Put(const Statement& statement);
    bool PutData(const Statement& statement);
    bool PutDefinition(const Statement& statement);
    bool PutVariable(const Statement& statement);  // and cursors
    void PutFlow(const Statement& statement);      // and calls
    void PutStatements(const std::vector<StatementPtr>& statements);
    void Put(const InsertStatement& insert);
    void Put(const UpdateStatement& update);
    void Put(const DeleteStatement& statement);
    void Put(const MergeStatement& merge);
    void Put(const MergeClause& clause);
    void PutAssignments(const std::vector<Assignment>& assignments);
    void Put(const DeclareStatement& declare);
    void Put(const SetOptionStatement& set);
    void Put(const CursorDefinition& cursor);
    void Put(const CursorName& cursor);
    void Put(const FetchStatement& fetch);
    void Put(const IfStatement& statement);
    void PutBranch(const Statement& statement);
    void Put(const TryCatchStatement& statement);
    void Put(const ExecuteStatement& execute);
    void Put(const TransactionStatement& transaction);
    void Put(const RaiserrorStatement& raise);
    void Put(const ThrowStatement& raise);
    void Put(const ReturnStatement& statement);
    void Put(const BlockStatement& block);

    void Text(std::string_view text) { out_ += text; }
    void NewLine();

  private:
    std::string out_;
    int indent_ = 0;
};

std::string_view AssignText(AssignOp op);

}  // namespace vicenter::tsql
