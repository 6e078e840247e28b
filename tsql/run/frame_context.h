#pragma once

// What a translation asks about, as the running frame sees it: its variables, its tables, its options, its
// literals. Lives for one translation.

#include <optional>
#include <string_view>

#include "tsql/catalog/catalog.h"
#include "tsql/run/frame.h"
#include "tsql/run/program.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

class FrameContext final : public TranslateContext {
  public:
    FrameContext(const Catalog& catalog, ProgramStore& programs, const Frame& frame)
        : catalog_(catalog), programs_(programs), frame_(frame) {}

    std::optional<SqlType> VariableType(std::string_view name) const override;
    const TableInfo* FindTable(std::string_view name) const override {
        return frame_.FindTable(catalog_, name);
    }
    const CreateViewStatement* ViewDefinition(std::string_view name) override;
    int LiteralOrdinal(const LiteralExpr& literal) const override {
        return frame_.literals.OrdinalOf(literal);
    }
    bool TakesIdentity(const TableInfo& table) const override;
    void PinLiteral(const LiteralExpr& literal) override {
        if (frame_.literals.Pin(literal)) hasPinned_ = true;
    }

    // A literal that differs from run to run has decided how the statement was translated.
    bool HasPinned() const { return hasPinned_; }

  private:
    const Catalog& catalog_;
    ProgramStore& programs_;
    const Frame& frame_;
    bool hasPinned_ = false;
};

}  // namespace vicenter::tsql::engine
