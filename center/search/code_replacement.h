#pragma once

// One code of the ledger replaced by another in every template of the user's: an account that was split, a
// department that was renamed. What would change is listed first, line by line, each held against the
// ledger's master data; the chosen lines are written in one batch, all or none, with the version before of
// every template kept, so that the whole replacement can be taken back at once. Tells the user what came of
// it and writes the operation log. Needs no window; the right to change templates has been asked for by then.
// User-interface thread.

#include <cstddef>
#include <string>
#include <vector>

#include "center/editing/cell_checks.h"
#include "center/lookups/cell_resolution.h"
#include "store/stored_templates.h"
#include "store/template_guard.h"

namespace vicenter::center {

// The columns that hold codes, or the names that codes have become.
const std::vector<int>& CodeColumns();

struct ReplacementWish {
    int column = 0;    // of CodeColumns()
    std::string from;  // the code, or what stands in the cells
    std::string to;    // a code of today's ledger
};

struct ReplacementLine {
    enum class State {
        Ready,
        Doubtful,    // something else in the line would no longer fit
        Impossible,  // the new code does not fit there, or the template could not be saved
    };
    std::string templateId;
    std::string templateName;
    int row = 0;         // from 1
    std::string number;  // template number
    std::string explanation;
    std::string before;
    std::string after;
    State state = State::Ready;
    std::string note;  // why it is not ready
    bool chosen = false;
};

class CodeReplacement {
  public:
    explicit CodeReplacement(std::string userId) : userId_(std::move(userId)) {}

    // Lists what would change; ready lines of the user's own templates are chosen, those of the standard
    // template, which is everybody's, are not. False: the user has been told why there is nothing to list.
    bool List(const ReplacementWish& wish);
    const std::vector<ReplacementLine>& Lines() const { return lines_; }
    void Choose(std::size_t index, bool chosen);
    // Every ready line, or none.
    void ChooseAll(bool chosen);
    // How many lines of how many templates are chosen, of how many.
    std::string Note() const;

    // Asks, then writes the chosen lines. True when something was written; the list is empty then.
    bool Replace();
    // Brings back what the user's last replacement replaced, in all templates that nobody has written to
    // since; asks before.
    static bool UndoLast(const std::string& userId);
    // The same for this user; the list, which no longer holds, is empty then.
    bool Undo();
    // Templates have been written since.
    bool HasWritten() const { return hasWritten_; }

  private:
    struct Changed {
        std::size_t line;        // in lines_
        store::LineTexts texts;  // as it would be stored
    };
    struct Target {
        std::size_t stored;  // in templates_
        std::vector<Changed> rows;
    };

    bool FindCode(const ReplacementWish& wish);
    bool ListTemplate(std::size_t index, const ReplacementWish& wish);
    // The chosen lines of the target in place of those that are stored; nothing when none is chosen.
    std::vector<store::LineTexts> LinesOf(const Target& target) const;
    // What is sent of the targets, side by side.
    struct Sent {
        std::vector<const Target*> targets;
        std::vector<store::SeenTemplate> seen;
        std::vector<std::string> batches;
    };
    // Why the target cannot be saved so; empty when it can.
    std::string WhyNot(const Target& target, const std::vector<store::LineTexts>& lines) const;
    Sent ToSend(std::vector<std::string>& told) const;
    static bool Write(Sent& sent, std::vector<std::string>& told);
    bool Send(std::vector<std::string>& told);
    void Forget();

    std::string userId_;
    std::string to_;                   // as the ledger writes it
    std::vector<std::string> former_;  // what the cells may hold
    std::vector<store::StoredTemplate> templates_;
    std::vector<Target> targets_;
    std::vector<ReplacementLine> lines_;
    MasterRecords records_;
    CellChecks checks_;
    bool hasWritten_ = false;
};

}  // namespace vicenter::center
