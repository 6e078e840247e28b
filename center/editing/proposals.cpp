#include "center/editing/proposals.h"

#include "center/editing/cell_rules.h"
#include "center/grid/line_texts.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

using automation::Decimal;

namespace {

std::string_view AccountOf(const EntryGrid& grid, int row) {
    return system::TrimBlanks(grid.Text(row, column::kAccountNumber));
}

std::string_view DirectionOf(const EntryGrid& grid, int row) {
    return system::TrimBlanks(grid.Text(row, column::kDirection));
}

std::string_view SideText(bool debit) {
    return debit ? kDebit : kCredit;
}

// The lines of a number, taken together.
struct NumberLines {
    Decimal difference;  // debit less credit
    bool debit = false;
    bool credit = false;

    bool IsOpen() const { return !difference.IsZero() || !debit || !credit; }
    // The empty text while the sides do not differ.
    std::string_view Missing() const {
        return difference.IsZero() ? std::string_view() : SideText(difference.IsNegative());
    }
};

NumberLines LinesOf(const EntryGrid& grid, int rowCount, std::string_view number, int exceptRow = 0) {
    NumberLines lines;
    for (int row = 1; row <= rowCount; ++row) {
        if (row == exceptRow || NumberOfRow(grid, row) != number) continue;
        const std::string_view direction = DirectionOf(grid, row);
        lines.debit = lines.debit || direction == kDebit;
        lines.credit = lines.credit || direction == kCredit;
        const std::optional<Decimal> amount = DecimalIn(grid.Text(row, column::kAmount));
        if (!amount) continue;
        if (direction == kDebit) lines.difference = Decimal::Add(lines.difference, *amount);
        if (direction == kCredit) lines.difference = Decimal::Subtract(lines.difference, *amount);
    }
    return lines;
}

struct Sides {
    bool debit = false;
    bool credit = false;

    void Add(bool isDebit) { (isDebit ? debit : credit) = true; }
};

// On which the user has entered an account, in this template and in those that are saved.
Sides SidesOf(const WindowState& state, std::string_view account, int exceptRow) {
    Sides sides;
    if (const KnownUses* known = state.uses.IfKnown(account)) {
        for (const store::AccountUse& use : known->uses)
            sides.Add(use.debit);
    }
    const EntryGrid& grid = *state.grid;
    for (int row = 1; row <= state.open.RowCount(); ++row) {
        if (row == exceptRow || AccountOf(grid, row) != account) continue;
        const std::string_view direction = DirectionOf(grid, row);
        if (direction == kDebit || direction == kCredit) sides.Add(direction == kDebit);
    }
    return sides;
}

// Money goes both ways: where a side is missing, it is that one. Other accounts stand where they have always
// stood, and those that are new where the chart keeps their balance.
std::string_view SideOf(const WindowState& state, int row, std::string_view missing) {
    const std::string_view account = AccountOf(*state.grid, row);
    const store::AccountNeeds* needs = state.accounts.IfKnown(account);
    if (needs != nullptr && needs->settlement && !missing.empty()) return missing;
    const Sides sides = SidesOf(state, account, row);
    if (sides.debit != sides.credit) return SideText(sides.debit);
    const KnownUses* known = state.uses.IfKnown(account);
    if (!sides.debit && known != nullptr && known->balanceIsDebit) return SideText(*known->balanceIsDebit);
    return missing;
}

struct Follower {
    std::string_view account;
    bool debit = false;

    bool operator==(const Follower& other) const = default;
};

// The account that has always come below that line's account on its side, as far as is known.
std::optional<Follower> FollowerOf(const WindowState& state, int row) {
    const EntryGrid& grid = *state.grid;
    const std::string_view account = AccountOf(grid, row);
    const std::string_view direction = DirectionOf(grid, row);
    const KnownUses* known = state.uses.IfKnown(account);
    if (account.empty() || known == nullptr || (direction != kDebit && direction != kCredit)) return {};
    std::optional<Follower> only;
    bool always = true;
    const auto add = [&](const Follower& follower) {
        always = always && !follower.account.empty() && (!only || *only == follower);
        only = follower;
    };
    for (const store::AccountUse& use : known->uses) {
        if (use.debit == (direction == kDebit)) add({use.nextNumber, use.nextDebit});
    }
    // What this number itself has shown is no habit.
    const std::string_view number = NumberOfRow(grid, row);
    for (int above = 1; above < row && always; ++above) {
        if (NumberOfRow(grid, above) == number || AccountOf(grid, above) != account) continue;
        if (DirectionOf(grid, above) != direction) continue;
        const bool goesOn = NumberOfRow(grid, above + 1) == NumberOfRow(grid, above);
        add(goesOn ? Follower{AccountOf(grid, above + 1), DirectionOf(grid, above + 1) == kDebit}
                   : Follower{});
    }
    return always ? only : std::nullopt;
}

// As the last line did that went on with a number: who leaves its explanation blank there, or writes one of
// its own, is not to find the one above in it.
bool RepeatsExplanations(const EntryGrid& grid, int row) {
    for (int above = row - 1; above > 1; --above) {
        const std::string_view number = NumberOfRow(grid, above);
        if (number.empty() || number != NumberOfRow(grid, above - 1)) continue;
        return grid.Text(above, column::kExplanation) == grid.Text(above - 1, column::kExplanation);
    }
    return true;
}

// Side and, as long as none is entered, account.
void ProposeSide(const WindowState& state, int row, const NumberLines& lines, ProposedLine& line) {
    const EntryGrid& grid = *state.grid;
    const std::string_view direction = DirectionOf(grid, row);
    std::string_view side = lines.Missing();
    if (!AccountOf(grid, row).empty()) {
        side = SideOf(state, row, side);
    } else if (const auto follower = FollowerOf(state, row - 1); follower && lines.IsOpen()) {
        if (direction.empty() || direction == SideText(follower->debit)) line.account = follower->account;
        side = SideText(follower->debit);
    }
    if (direction.empty()) line.direction = side;
}

}  // namespace

const std::string& ProposedLine::Text(int gridColumn) const {
    static const std::string none;
    switch (gridColumn) {
        case column::kNo:
            return number;
        case column::kExplanation:
            return explanation;
        case column::kDirection:
            return direction;
        case column::kAccountNumber:
            return account;
        case column::kAmount:
            return amount;
        default:
            return none;
    }
}

ProposedLine ProposeLine(const WindowState& state, int row) {
    const EntryGrid& grid = *state.grid;
    ProposedLine line;
    const std::string_view before = NumberOfRow(grid, row - 1);
    if (before.empty() || grid.Refusal(row - 1, column::kNo) != TextVerdict::Taken) return line;
    const std::string_view own = NumberOfRow(grid, row);
    // Who has begun another number has said that this one is done.
    if (!own.empty() && own != before) {
        if (!AccountOf(grid, row).empty() && DirectionOf(grid, row).empty())
            line.direction = SideOf(state, row, {});
        return line;
    }
    if (own.empty()) line.number = before;
    if (grid.Refusal(row - 1, column::kExplanation) == TextVerdict::Taken && RepeatsExplanations(grid, row))
        line.explanation = grid.Text(row - 1, column::kExplanation);

    // What the row has taken already is no reason to propose the rest of it no longer.
    const NumberLines lines = LinesOf(grid, state.open.RowCount(), before, row);
    ProposeSide(state, row, lines, line);
    const std::string_view missing = lines.Missing();
    const std::string_view direction = DirectionOf(grid, row);
    if (missing.empty() || (direction.empty() ? line.direction : direction) != missing) return line;
    if (!grid.Text(row, column::kAmount).empty()) return line;
    const Decimal& difference = lines.difference;
    std::string amount = (difference.IsNegative() ? difference.Negated() : difference).ToShortText();
    if (CheckTypedText(column::kAmount, amount) == TextVerdict::Taken) line.amount = std::move(amount);
    return line;
}

bool IsNumberOpen(const EntryGrid& grid, int rowCount, int row) {
    return LinesOf(grid, rowCount, NumberOfRow(grid, row)).IsOpen();
}

int Proposals::NextRow() const {
    const int used = state_.open.RowCount();
    const bool stillBegun = begun_ == used || begun_ == used + 1;
    return begun_ > 1 && stillBegun ? begun_ : used + 1;
}

int Proposals::Row() const {
    if (!on_ || !state_.hasRight || !state_.open.IsOpen() || !state_.open.LinesKnown()) return 0;
    const int row = NextRow();
    return row > 1 && row != refused_ && row <= state_.grid->RowTotal() ? row : 0;
}

const ProposedLine& Proposals::Line(int row) const {
    if (!line_ || lineRow_ != row) {
        line_ = ProposeLine(state_, row);
        lineRow_ = row;
    }
    return *line_;
}

std::string Proposals::Text(const CellAddress& cell) const {
    if (cell.row < 2 || cell.row != Row()) return {};
    if (!state_.grid->Text(cell.row, cell.column).empty()) return {};
    return Line(cell.row).Text(cell.column);
}

void Proposals::Show() {
    shownRow_ = Row();
    shown_ = shownRow_ == 0 ? ProposedLine() : Line(shownRow_);
}

bool Proposals::WasShown(const CellAddress& cell) const {
    return cell.row == shownRow_ && shown_.Text(cell.column) == Text(cell);
}

bool Proposals::Refuse() {
    const int row = Row();
    if (row == 0 || row != state_.grid->ActiveCell().row || Line(row).IsEmpty()) return false;
    refused_ = row;
    return true;
}

void Proposals::ActiveCellChanged() {
    const int row = state_.grid->ActiveCell().row;
    const int used = state_.open.RowCount();
    if (begun_ == used && row != begun_) left_ = begun_;
    if (row == used + 1 || (row == left_ && row == used)) {
        begun_ = row;
    } else if (row != begun_) {
        begun_ = 0;
    }
    if (row != jumped_) jumped_ = 0;
    Show();
}

void Proposals::Settle() {
    const int used = state_.open.RowCount();
    const bool counted = used == 0 || !state_.grid->IsBlankRow(used);
    if (counted && NextRow() != refused_) refused_ = 0;
}

void Proposals::RowsInserted(int firstRow, int count) {
    if (refused_ >= firstRow) refused_ += count;
    RowsMoved(firstRow);
}

void Proposals::RowsRemoved(int firstRow, int count) {
    if (refused_ >= firstRow) refused_ = refused_ < firstRow + count ? 0 : refused_ - count;
    RowsMoved(firstRow);
}

void Proposals::RowsMoved(int firstRow) {
    line_.reset();
    // A blank row that comes below the one that is being filled changes nothing there.
    if (firstRow <= begun_) {
        begun_ = 0;
        jumped_ = 0;
    }
    if (firstRow <= left_) left_ = 0;
    ActiveCellChanged();
}

void Proposals::WasReset() {
    refused_ = 0;
    RowsMoved(0);
}

}  // namespace vicenter::center
