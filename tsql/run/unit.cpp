#include "tsql/run/unit.h"

#include <array>
#include <optional>

#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql::engine {

namespace {

struct KnownTemplate {
    std::optional<LiteralTemplate> pattern;
    const Statement* statement = nullptr;
    const std::vector<std::uint32_t>* offsets = nullptr;
};

// How many kinds of INSERT may take turns and still be recognized.
constexpr std::size_t kKnownTemplates = 4;

bool IsPlainInsert(const Statement& statement) {
    const auto* insert = TryAs<InsertStatement>(&statement);
    return insert != nullptr && insert->source == InsertSource::kValues && insert->rows.size() == 1 &&
           !insert->output && !insert->top && insert->with.empty();
}

}  // namespace

std::shared_ptr<Unit> ParseUnit(std::string_view text, bool findTemplates) {
    auto unit = std::make_shared<Unit>();
    StatementReader reader(text);
    std::array<KnownTemplate, kKnownTemplates> known;
    std::size_t oldest = 0;
    std::vector<LiteralValue> literals;
    for (;;) {
        const Position where = reader.Where();
        bool matched = false;
        for (const KnownTemplate& candidate : known) {
            if (!candidate.pattern) continue;
            std::uint32_t start = 0;
            const auto end = candidate.pattern->Match(text, where.offset, &literals, &start);
            if (!end) continue;
            UnitItem item;
            item.statement = candidate.statement;
            item.line = Advance(text, where, start).line;
            item.begin = start;
            item.end = *end;
            item.firstLiteral = unit->literals.size();
            item.literalCount = literals.size();
            item.offsets = candidate.offsets;
            unit->literals.insert(unit->literals.end(), literals.begin(), literals.end());
            unit->items.push_back(item);
            reader.Seek(Advance(text, where, *end));
            matched = true;
            break;
        }
        if (matched) continue;
        StatementPtr statement = reader.Next();
        if (!statement) break;
        UnitItem item;
        item.statement = statement.get();
        item.line = statement->position.line;
        item.begin = statement->position.offset;
        item.end = statement->endOffset;
        if (findTemplates && IsPlainInsert(*statement)) {
            const std::string_view own =
                text.substr(statement->position.offset, statement->endOffset - statement->position.offset);
            KnownTemplate fresh;
            fresh.pattern = LiteralTemplate::Make(own);
            // The first of them runs as the others do.
            if (fresh.pattern && fresh.pattern->Match(text, statement->position.offset, &literals)) {
                auto offsets = std::make_unique<std::vector<std::uint32_t>>();
                for (const LiteralValue& literal : literals)
                    offsets->push_back(literal.offset);
                item.firstLiteral = unit->literals.size();
                item.literalCount = literals.size();
                item.offsets = offsets.get();
                unit->literals.insert(unit->literals.end(), literals.begin(), literals.end());
                fresh.statement = statement.get();
                fresh.offsets = offsets.get();
                unit->offsets.push_back(std::move(offsets));
                known[oldest] = std::move(fresh);
                oldest = (oldest + 1) % kKnownTemplates;
            }
        }
        unit->items.push_back(item);
        unit->statements.push_back(std::move(statement));
    }
    return unit;
}

}  // namespace vicenter::tsql::engine
