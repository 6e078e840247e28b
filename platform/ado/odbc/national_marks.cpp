#include "platform/ado/odbc/national_marks.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "automation/error.h"
#include "platform/ado/connection.h"
#include "platform/system/utf8.h"
#include "text/ascii.h"
#include "tsql/base/diagnostic.h"
#include "tsql/syntax/lexer.h"

namespace vicenter::ado {

using text::LowerAscii;
using tsql::Op;
using tsql::Token;
using tsql::TokenKind;

namespace {

bool IsName(const Token& token) {
    return token.kind == TokenKind::kIdentifier || token.kind == TokenKind::kQuotedIdentifier;
}

// Goes through a batch word by word and knows at each literal where its text would end up.
class Marker {
  public:
    Marker(std::string_view batch, const system::CodePage& page, int pageNumber, const UnicodeColumn& column)
        : batch_(batch), page_(page), pageNumber_(pageNumber), column_(column), lexer_(batch) {}

    std::string Mark() {
        std::string marked;
        std::size_t copied = 0;
        for (Token token = lexer_.Next(); token.kind != TokenKind::kEnd; token = lexer_.Next()) {
            if (token.kind == TokenKind::kString) {
                const std::size_t missing = page_.FirstMissing(token.text);
                if (missing != std::string_view::npos) {
                    CheckPlace(token.text.substr(missing));
                    marked.append(batch_.substr(copied, token.position.offset - copied));
                    marked += 'N';
                    copied = token.position.offset;
                }
            } else {
                Follow(token);
            }
            previous_ = token;
        }
        marked.append(batch_.substr(copied));
        return marked;
    }

  private:
    // What the statement at hand does with the values that come next.
    enum class Place {
        kReads,      // compared or shown
        kColumns,    // the list of columns of an INSERT
        kValues,     // its values
        kRows,       // a query that gives its rows
        kSets,       // the assignments of an UPDATE
        kDefines,    // the columns of a new table
        kElsewhere,  // a variable, an argument
    };

    void Follow(const Token& token) {
        if (token.kind == TokenKind::kOperator) return FollowOperator(token);
        if (token.kind == TokenKind::kVariable) {
            variable_ = LowerAscii(token.text);
            if (expectsTable_) table_ = variable_;
            return;
        }
        if (!IsName(token)) return;
        const std::string word =
            token.kind == TokenKind::kIdentifier ? LowerAscii(token.text) : std::string();
        if (previous_.kind == TokenKind::kVariable &&
            (word == "nvarchar" || word == "nchar" || word == "ntext"))
            unicodeVariables_.insert(variable_);
        if (place_ == Place::kDefines) return Define(token, word);
        if (expectsTable_) {
            // "insert into t", "insert t", "update t"; a table of another owner has its last name.
            if (word == "into" || word == "top" || word == "from") return;
            if (StartsStatement(word)) {
                expectsTable_ = false;
            } else {
                table_ = tsql::TokenValue(token);
                return;
            }
        }
        if (word == "insert" || word == "update" || word == "merge") {
            place_ = Place::kElsewhere;
            expectsTable_ = true;
            isUpdate_ = word == "update";
            isInsert_ = word == "insert";
            columns_.clear();
            // Rows are counted over the lines of a save, one INSERT each.
            depth_ = 0;
        } else if (word == "values" && isInsert_) {
            expectsTable_ = false;
            place_ = Place::kValues;
            if (table_ != rowTable_) row_ = 0;
            rowTable_ = table_;
            depth_ = 0;
        } else if (word == "select") {
            place_ = isInsert_ && place_ != Place::kReads ? Place::kRows : Place::kReads;
            isUpdate_ = false;
            isInsert_ = false;
        } else if (word == "set") {
            place_ = isUpdate_ ? Place::kSets : Place::kElsewhere;
            expectsTable_ = false;
            setColumn_.clear();
        } else if (word == "where" || word == "if" || word == "while" || word == "on" || word == "having") {
            place_ = Place::kReads;
            isUpdate_ = false;
        } else if (word == "delete" || word == "from") {
            if (place_ != Place::kRows || word == "delete") place_ = Place::kReads;
            isInsert_ = false;
        } else if (word == "table") {
            // CREATE TABLE t, or a variable's.
            place_ = Place::kDefines;
            defined_ = previous_.kind == TokenKind::kVariable ? variable_ : std::string();
            depth_ = 0;
        } else if (word == "declare" || word == "exec" || word == "execute" || word == "print" ||
                   word == "raiserror" || word == "create" || word == "alter") {
            place_ = Place::kElsewhere;
            isUpdate_ = false;
            isInsert_ = false;
            if (word == "print" || word == "raiserror") place_ = Place::kReads;
        } else if (place_ == Place::kColumns) {
            columns_.push_back(tsql::TokenValue(token));
        } else if (place_ == Place::kSets && depth_ == 0 && setColumn_.empty()) {
            candidate_ = tsql::TokenValue(token);
        }
    }

    void FollowOperator(const Token& token) {
        if (token.op == Op::kDot) {
            if (expectsTable_) table_.clear();
            return;
        }
        if (token.op == Op::kLeftParen) {
            if (isInsert_ && expectsTable_) {
                expectsTable_ = false;
                place_ = Place::kColumns;
            } else {
                ++depth_;
                if (place_ == Place::kDefines && depth_ == 1) definesColumn_ = true;
                if (place_ == Place::kValues && depth_ == 1) {
                    ++row_;
                    value_ = 0;
                }
            }
        } else if (token.op == Op::kRightParen) {
            if (place_ == Place::kColumns) {
                place_ = Place::kElsewhere;
            } else {
                --depth_;
                if (place_ == Place::kDefines && depth_ == 0) place_ = Place::kElsewhere;
            }
        } else if (token.op == Op::kComma) {
            if (place_ == Place::kValues && depth_ == 1) ++value_;
            if (place_ == Place::kDefines && depth_ == 1) definesColumn_ = true;
            if (place_ == Place::kSets && depth_ == 0) setColumn_.clear();
        } else if (token.op == Op::kEqual && place_ == Place::kSets && setColumn_.empty()) {
            setColumn_ = candidate_;
        }
    }

    // A table that the batch makes itself is not in the database yet.
    void Define(const Token& token, const std::string& word) {
        if (depth_ == 0) {
            defined_ = LowerAscii(tsql::TokenValue(token));
        } else if (depth_ == 1 && definesColumn_) {
            candidate_ = LowerAscii(tsql::TokenValue(token));
            definesColumn_ = false;
            definesType_ = true;
        } else if (definesType_) {
            definesType_ = false;
            if (word == "nvarchar" || word == "nchar" || word == "ntext") own_[defined_][candidate_] = true;
            if (word == "varchar" || word == "char" || word == "text") own_[defined_][candidate_] = false;
        }
    }

    bool Takes(const std::string& field) const {
        const auto own = own_.find(LowerAscii(table_));
        if (own == own_.end()) return column_(table_, field).value_or(false);
        if (field.empty()) {
            return std::all_of(own->second.begin(), own->second.end(),
                               [](const auto& entry) { return entry.second; });
        }
        const auto found = own->second.find(LowerAscii(field));
        return found != own->second.end() && found->second;
    }

    static bool StartsStatement(const std::string& word) {
        return word == "set" || word == "values" || word == "select" || word == "exec" || word == "execute" ||
               word == "default";
    }

    void CheckPlace(std::string_view from) const {
        std::string field;
        bool takes = false;
        switch (place_) {
            case Place::kReads:
                return;
            case Place::kValues:
                if (value_ < columns_.size()) field = columns_[value_];
                takes = Takes(field);
                break;
            case Place::kSets:
                field = setColumn_;
                takes = Takes(field);
                break;
            case Place::kRows:
                takes = Takes("");
                break;
            default:
                takes = unicodeVariables_.contains(variable_);
                field = variable_;
                break;
        }
        if (takes) return;
        const std::string character(system::Head(from, 1));
        std::string text =
            "字符“" + character + "”不在账套数据库的代码页（" + std::to_string(pageNumber_) + "）中，";
        text += field.empty() ? "不能保存" : "不能保存到字段 " + field + " 中";
        if (place_ == Place::kValues) text += "（第 " + std::to_string(row_) + " 行）";
        throw automation::Error(error_number::kProviderError, text + "。", "ODBC");
    }

    std::string_view batch_;
    const system::CodePage& page_;
    int pageNumber_;
    const UnicodeColumn& column_;
    tsql::Lexer lexer_;
    Token previous_;
    Place place_ = Place::kReads;
    bool expectsTable_ = false;
    bool isInsert_ = false;
    bool isUpdate_ = false;
    std::string table_;
    std::string rowTable_;
    std::vector<std::string> columns_;
    std::string candidate_;
    std::string setColumn_;
    std::string variable_;
    std::set<std::string> unicodeVariables_;
    std::map<std::string, std::map<std::string, bool>> own_;  // tables that the batch makes
    std::string defined_;
    bool definesColumn_ = false;
    bool definesType_ = false;
    int depth_ = 0;
    std::size_t value_ = 0;
    int row_ = 0;
};

}  // namespace

std::string WithNationalMarks(std::string_view batch, const system::CodePage& page, int pageNumber,
                              const UnicodeColumn& column) {
    try {
        return Marker(batch, page, pageNumber, column).Mark();
    } catch (const tsql::SqlError&) {
        // The server says what is wrong with it.
        return std::string(batch);
    }
}

}  // namespace vicenter::ado
