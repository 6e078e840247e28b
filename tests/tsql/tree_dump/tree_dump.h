#pragma once

// The tree as indented text, one node a line: name, position, attributes. For tests and for whoever
// wonders what the parser made of a statement.

#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast.h"

namespace vicenter::tsql {

class TreeDump {
  public:
    explicit TreeDump(bool withPositions) : withPositions_(withPositions) {}

    void Add(const Statement& statement);
    std::string Finish() { return std::move(out_); }

  private:
    // Indents what is added during its lifetime.
    class Deeper {
      public:
        explicit Deeper(TreeDump& dump) : dump_(dump) { ++dump_.indent_; }
        ~Deeper() { --dump_.indent_; }
        Deeper(const Deeper&) = delete;
        Deeper& operator=(const Deeper&) = delete;

      private:
        TreeDump& dump_;
    };

    void Line(std::string_view name, const Position* position = nullptr, std::string_view attributes = {});
    void Add(std::string_view role, const ExprPtr& expr);  // a role's name above the node; nothing for none
    void Add(const Expr& expr);
    void AddCondition(const Expr& expr);
    void AddFunction(const FunctionExpr& function);
    void AddFrame(const WindowFrame& frame);
    void Add(const MergeClause& clause);
    void Add(const std::vector<Assignment>& assignments);
    void Add(std::string_view role, const std::vector<ExprPtr>& list);
    void Add(std::string_view role, const std::vector<OrderItem>& items);
    void Add(const Query& query);
    void Add(const QueryBody& body);
    void Add(const SelectBody& select);
    void Add(const std::vector<GroupingItem>& grouping);
    void Add(const SelectItem& item);
    void Add(const TopClause& top);
    void Add(const TableSource& source);
    void Add(std::string_view role, const std::vector<TableSourcePtr>& sources);
    void Add(const std::vector<CommonTable>& with);
    void Add(const OutputClause& output);
    void Add(const TableDefinition& definition);
    void Add(const Constraint& constraint);
    void Add(const CursorDefinition& cursor);
    void Add(std::string_view role, const std::vector<StatementPtr>& statements);
    void AddDefinition(const Statement& statement);
    void AddData(const Statement& statement);
    void AddVariable(const Statement& statement);
    void AddFlow(const Statement& statement);

    std::string out_;
    int indent_ = 0;
    bool withPositions_;
};

std::string DumpTree(const Batch& batch, bool withPositions);

}  // namespace vicenter::tsql
