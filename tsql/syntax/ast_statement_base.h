#pragma once

// What all statements of the syntax tree share; see ast.h for ownership.

#include <cstdint>
#include <memory>

#include "tsql/base/position.h"

namespace vicenter::tsql {

enum class StatementKind {
    // data
    kSelect,
    kInsert,
    kUpdate,
    kDelete,
    kMerge,
    kTruncate,
    // definitions
    kCreateTable,
    kAlterTable,
    kCreateIndex,
    kCreateView,
    kCreateProcedure,
    kDrop,
    kNoOperation,
    // variables and settings
    kDeclare,
    kSetVariable,
    kSetOption,
    // cursors
    kDeclareCursor,
    kSetCursor,
    kOpenCursor,
    kFetch,
    kCloseCursor,
    kDeallocate,
    // flow
    kBlock,
    kIf,
    kWhile,
    kBreak,
    kContinue,
    kReturn,
    kGoto,
    kLabel,
    kWaitFor,
    kTryCatch,
    kPrint,
    kRaiserror,
    kThrow,
    // calls and transactions
    kExecute,
    kExecuteText,
    kTransaction,
};

struct Statement {
    StatementKind kind;
    Position position;
    std::uint32_t endOffset = 0;

    virtual ~Statement() = default;

  protected:
    Statement(StatementKind k, Position p) : kind(k), position(p) {}
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
};
using StatementPtr = std::unique_ptr<Statement>;

}  // namespace vicenter::tsql
