#pragma once

// The syntax tree of T-SQL: one include for all of it. Start reading at ast_statement.h.
//
// Trees own everything they hold (texts are copied out of the batch), never change once the parser has handed
// them out, and may then be read from anywhere. Every node has a kind; As<T>() turns a node into its own
// type.

#include "tsql/syntax/ast_definition.h"
#include "tsql/syntax/ast_expression.h"
#include "tsql/syntax/ast_query.h"
#include "tsql/syntax/ast_statement.h"
