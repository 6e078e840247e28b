#include "tsql/run/program.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>

#include "tsql/base/text_units.h"
#include "tsql/syntax/literal_template.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql::engine {

namespace {

bool IsPlainInsert(const Statement& statement) {
    const auto* insert = TryAs<InsertStatement>(&statement);
    return insert != nullptr && insert->source == InsertSource::kValues && insert->rows.size() == 1 &&
           !insert->output && !insert->top && insert->with.empty();
}

// Recognizes the repeated INSERTs of a batch by the templates of the last few that were parsed. A batch of
// ten thousand rows is parsed once this way, and each row costs a comparison of its text.
class RepeatedInserts {
  public:
    RepeatedInserts(std::string_view text, Program& program) : text_(text), program_(program) {}

    // The statement at a place, without a tree of its own; nothing when it has to be parsed.
    std::optional<ProgramItem> Next(const Position& where) {
        for (const Known& candidate : known_) {
            if (!candidate.pattern) continue;
            std::uint32_t start = 0;
            const auto end = candidate.pattern->Match(text_, where.offset, &literals_, &start);
            if (!end) continue;
            ProgramItem item;
            item.statement = candidate.statement;
            item.line = Advance(text_, where, start).line;
            item.begin = start;
            item.end = *end;
            AddLiterals(item, *candidate.offsets);
            return item;
        }
        return std::nullopt;
    }

    // Makes a template of a statement that was parsed; it then runs as those do that match it.
    void Learn(const Statement& statement, ProgramItem& item) {
        const std::string_view own = text_.substr(item.begin, item.end - item.begin);
        Known fresh;
        fresh.pattern = LiteralTemplate::Make(own);
        if (!fresh.pattern || !fresh.pattern->Match(text_, item.begin, &literals_)) return;
        auto offsets = std::make_unique<std::vector<std::uint32_t>>();
        for (const LiteralValue& literal : literals_)
            offsets->push_back(literal.offset);
        AddLiterals(item, *offsets);
        fresh.statement = &statement;
        fresh.offsets = offsets.get();
        program_.offsets.push_back(std::move(offsets));
        known_[oldest_] = std::move(fresh);
        oldest_ = (oldest_ + 1) % known_.size();
    }

  private:
    struct Known {
        std::optional<LiteralTemplate> pattern;
        const Statement* statement = nullptr;
        const std::vector<std::uint32_t>* offsets = nullptr;
    };
    // How many kinds of INSERT may take turns and still be recognized.
    static constexpr std::size_t kKinds = 4;

    void AddLiterals(ProgramItem& item, const std::vector<std::uint32_t>& offsets) {
        item.firstLiteral = program_.literals.size();
        item.literalCount = literals_.size();
        item.offsets = &offsets;
        program_.literals.insert(program_.literals.end(), literals_.begin(), literals_.end());
    }

    std::string_view text_;
    Program& program_;
    std::array<Known, kKinds> known_;
    std::size_t oldest_ = 0;
    std::vector<LiteralValue> literals_;  // of the last match; kept for its room
};

}  // namespace

std::shared_ptr<Program> ParseProgram(std::string_view text, bool findRepeated) {
    auto program = std::make_shared<Program>();
    StatementReader reader(text);
    RepeatedInserts repeated(text, *program);
    for (;;) {
        const Position where = reader.Where();
        if (const auto item = repeated.Next(where)) {
            program->items.push_back(*item);
            reader.Seek(Advance(text, where, item->end));
            continue;
        }
        StatementPtr statement = reader.Next();
        if (!statement) break;
        ProgramItem item;
        item.statement = statement.get();
        item.line = statement->position.line;
        item.begin = statement->position.offset;
        item.end = statement->endOffset;
        if (findRepeated && IsPlainInsert(*statement)) repeated.Learn(*statement, item);
        program->items.push_back(item);
        program->statements.push_back(std::move(statement));
    }
    program->usedVariables = reader.UsedVariables();
    return program;
}

namespace {

// Texts whose plans a session keeps.
constexpr std::size_t kKeptShapes = 500;
constexpr std::size_t kKeptCalls = 500;
// Programs of one shape that differ in pinned literals: with ever other ones they are not worth keeping.
constexpr std::size_t kKeptOfOneShape = 8;

bool Fits(const Program& program, const std::vector<LiteralValue>& literals) {
    return std::all_of(program.pinned.begin(), program.pinned.end(), [&](const auto& pin) {
        return literals[static_cast<std::size_t>(pin.first)].Text() == pin.second;
    });
}

// A copy that the literals refer to.
std::shared_ptr<const SentText> Sent(std::string_view text, std::vector<LiteralValue>& literals) {
    auto sent = std::make_shared<SentText>();
    sent->text = text;
    for (LiteralValue& literal : literals) {
        if (literal.text.empty()) continue;
        const auto at = static_cast<std::size_t>(literal.text.data() - text.data());
        literal.text = std::string_view(sent->text).substr(at, literal.text.size());
    }
    sent->literals = std::move(literals);
    return sent;
}

// The text of a module changes when it is altered.
const std::shared_ptr<Program>& Current(std::shared_ptr<Program>& kept, const std::string& text) {
    if (!kept || kept->text != text) {
        kept = ParseProgram(text, false);
        kept->text = text;
    }
    return kept;
}

}  // namespace

std::size_t ProgramStore::PlaceOf(std::string_view text) {
    return std::hash<std::string_view>()(text) % kKeptTexts;
}

const ProgramStore::Batch* ProgramStore::Known(std::string_view text) const {
    const Batch& kept = texts_[PlaceOf(text)];
    if (!kept.sent || kept.sent->text != text) return nullptr;
    // A plan may have looked at a literal since.
    return Fits(*kept.program, kept.sent->literals) ? &kept : nullptr;
}

ProgramStore::Batch ProgramStore::ForBatch(std::string_view text) {
    if (!keeps_) return {ParseProgram(text, false), nullptr};
    auto shape = ShapeOf(text);
    if (!shape) return {ParseProgram(text, true), nullptr};
    Batch& kept = texts_[PlaceOf(text)];
    kept = {ForShape(*shape, text), Sent(text, shape->literals)};
    return kept;
}

std::shared_ptr<Program> ProgramStore::ForShape(StatementShape& shape, std::string_view text) {
    const auto known = shapes_.find(shape.key);
    if (known != shapes_.end()) {
        for (const std::shared_ptr<Program>& program : known->second) {
            if (Fits(*program, shape.literals)) return program;
        }
    }
    std::shared_ptr<Program> program = ParseProgram(text, false);
    for (const LiteralValue& literal : shape.literals)
        program->shapeOffsets.push_back(literal.offset);
    if (shapes_.size() >= kKeptShapes) shapes_.clear();
    std::vector<std::shared_ptr<Program>>& programs = shapes_[std::move(shape.key)];
    if (programs.size() >= kKeptOfOneShape) programs.erase(programs.begin());
    programs.push_back(program);
    return program;
}

std::shared_ptr<Program> ProgramStore::ForProcedure(const ModuleInfo& procedure) {
    std::shared_ptr<Program>& kept = procedures_[LowerAscii(procedure.name)];
    if (!keeps_) kept.reset();
    return Current(kept, procedure.text);
}

std::shared_ptr<Program> ProgramStore::ForCall(const std::string& text) {
    if (!keeps_ || calls_.size() >= kKeptCalls) calls_.clear();
    return Current(calls_[text], text);
}

const CreateViewStatement* ProgramStore::ForView(const ModuleInfo& view) {
    const std::shared_ptr<Program>& program = Current(views_[LowerAscii(view.name)], view.text);
    return TryAs<CreateViewStatement>(program->items.front().statement);
}

}  // namespace vicenter::tsql::engine
