#pragma once

// A parsed batch, procedure or view with the plans of its statements, and the programs that a session keeps.
// Owned by the session that made them.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/run/literal_run.h"
#include "tsql/run/plan.h"
#include "tsql/syntax/ast.h"
#include "tsql/syntax/shape.h"

namespace vicenter::tsql::engine {

// A statement of a batch, or one more run of an earlier INSERT with other literals.
struct ProgramItem {
    const Statement* statement = nullptr;
    std::uint32_t line = 1;
    std::uint32_t begin = 0;  // of its text
    std::uint32_t end = 0;
    std::size_t firstLiteral = 0;
    std::size_t literalCount = 0;  // of one INSERT of many; 0 for a plain statement
    const std::vector<std::uint32_t>* offsets = nullptr;
};

struct Program {
    std::string text;
    std::vector<StatementPtr> statements;
    std::vector<ProgramItem> items;
    std::vector<LiteralValue> literals;  // of all repeated INSERTs; they refer to the batch's text
    std::vector<std::unique_ptr<std::vector<std::uint32_t>>> offsets;
    std::unordered_map<const void*, std::unique_ptr<Plan>> plans;
    // Still to be looked for among those that are declared, before anything runs.
    std::vector<Name> usedVariables;

    std::uint64_t namesCheckedAt = 0;  // what its names were looked up in, see CheckNames

    // Of a program kept by the shape of its text: where its literals stand, and those that must stay as they
    // are.
    std::vector<std::uint32_t> shapeOffsets;
    PinnedLiterals pinned;
};

// A text as it was sent, and its literals, which refer to it.
struct SentText {
    std::string text;
    std::vector<LiteralValue> literals;
};

// Reads a text as a whole, so that a syntax error anywhere keeps all of it from running. With findRepeated
// the repeated INSERTs of a long batch become runs of the first one; the text must outlive the program then.
std::shared_ptr<Program> ParseProgram(std::string_view text, bool findRepeated);

// What a session has parsed and may need again. A program that is running outlives its place here.
class ProgramStore {
  public:
    // Without keeping, each text is read anew.
    explicit ProgramStore(bool keeps) : keeps_(keeps) {}

    struct Batch {
        std::shared_ptr<Program> program;
        std::shared_ptr<const SentText> sent;  // when the program is kept by its shape
    };
    Batch ForBatch(std::string_view text);
    // The batch of a text that has come before, word for word, which then need not be read again; null for
    // any other. Holds until the next ForBatch.
    const Batch* Known(std::string_view text) const;
    std::shared_ptr<Program> ForProcedure(const ModuleInfo& procedure);
    // A text that sp_executesql runs, as the procedure that it stands for.
    std::shared_ptr<Program> ForCall(const std::string& text);
    const CreateViewStatement* ForView(const ModuleInfo& view);

  private:
    // Each has one place that it may stand in, by its hash; the next one that has the same takes it.
    static constexpr std::size_t kKeptTexts = 256;

    static std::size_t PlaceOf(std::string_view text);
    std::shared_ptr<Program> ForShape(StatementShape& shape, std::string_view text);

    const bool keeps_;
    using Programs = std::unordered_map<std::string, std::shared_ptr<Program>>;
    std::array<Batch, kKeptTexts> texts_;
    std::unordered_map<std::string, std::vector<std::shared_ptr<Program>>> shapes_;
    Programs procedures_;
    Programs calls_;
    Programs views_;
};

}  // namespace vicenter::tsql::engine
