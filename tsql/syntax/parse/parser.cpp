#include "tsql/syntax/parse/parser.h"

#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementReader::StatementReader(std::string_view text) : parser_(std::make_unique<Parser>(text)) {}
StatementReader::~StatementReader() = default;

StatementPtr StatementReader::Next() {
    return parser_->NextStatement();
}
Position StatementReader::Where() const {
    return parser_->Where();
}
void StatementReader::Seek(Position where) {
    parser_->Seek(where);
}
const std::vector<Name>& StatementReader::UsedVariables() const {
    return parser_->UsedVariables();
}

Batch ParseBatch(std::string_view text) {
    Batch batch;
    StatementReader reader(text);
    while (StatementPtr statement = reader.Next())
        batch.statements.push_back(std::move(statement));
    return batch;
}

ExprPtr ParseExpression(std::string_view text) {
    return Parser(text).WholeExpression(false);
}
ExprPtr ParseCondition(std::string_view text) {
    return Parser(text).WholeExpression(true);
}

}  // namespace vicenter::tsql
