// Scrolling the entry grid through 100,000 lines: every step scrolled and painted, beside the same window
// holding 100 lines. A pause is a step that takes longer than one twentieth of a second. Offscreen, so that
// painting is all there is to it.

#include <QApplication>
#include <QScrollBar>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "ui/grid/grid_model.h"
#include "ui/grid/grid_view.h"
#include "ui/run/application.h"

namespace {

using vicenter::center::CellAddress;
using vicenter::center::CellSelection;
using vicenter::center::CopiedBlock;
using vicenter::center::CursorMove;
using vicenter::center::EntryGrid;
using vicenter::center::PasteResult;
using vicenter::center::TextVerdict;
namespace column = vicenter::center::column;

constexpr int kManyLines = 100000;
constexpr int kFewLines = 100;
constexpr int kSteps = 600;
constexpr double kPauseMilliseconds = 50;

class NoActions : public vicenter::center::GridActions, public vicenter::center::NameListActions {
  public:
    using GridActions::MoveActiveCell;
    void GotFocus() override {}
    void LostFocus() override {}
    explicit NoActions(std::shared_ptr<EntryGrid> grid) : grid_(std::move(grid)) {}
    void MoveActiveCell(const CellAddress& to, CursorMove) override { grid_->SetActiveCell(to); }
    void SelectionChanged(const CellSelection&) override {}
    bool KeyPress(char32_t) override { return true; }
    bool KeyDown(int, const std::string&) override { return false; }
    TextVerdict CommitText(const CellAddress& cell, const std::string& text) override {
        grid_->SetText(cell.row, cell.column, text);
        return TextVerdict::Taken;
    }
    std::string DescribeFault(const CellAddress&) override { return {}; }
    void OpenLookUp() override {}
    int RowsInUse() const override { return grid_->RowTotal(); }
    void ClearCells(const CellSelection&) override {}
    std::optional<CopiedBlock> CopyBlock(const CellSelection&) override { return std::nullopt; }
    PasteResult PasteBlock(const CellSelection&, const CopiedBlock&) override { return {}; }
    void FillDown(const CellSelection&) override {}
    void DuplicateRows(const CellSelection&) override {}
    void InsertRows(const CellSelection&) override {}
    void DeleteRows(const CellSelection&) override {}
    bool CanUndo() const override { return false; }
    bool CanRedo() const override { return false; }
    void Undo() override {}
    void Redo() override {}
    bool IsOpen() const override { return false; }
    void TextTyped(const std::string&) override {}
    void Move(int) override {}
    bool Take() override { return false; }
    void Prepare() override {}
    void Select(int) override {}
    void Close() override {}

  private:
    std::shared_ptr<EntryGrid> grid_;
};

double Milliseconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - since).count();
}

struct Result {
    double median = 0;
    double worst = 0;
    int pauses = 0;
    double fill = 0;
};

Result Scroll(int lines) {
    const auto grid = std::make_shared<EntryGrid>();
    NoActions actions(grid);
    auto started = std::chrono::steady_clock::now();
    grid->Clear(lines + 2);
    for (int row = 1; row <= lines; ++row) {
        std::array<std::string, vicenter::center::kColumnCount> texts;
        texts[column::kNo - 1] = std::to_string(row / 4 + 1);
        texts[column::kExplanation - 1] = "收到货款 " + std::to_string(row);
        texts[column::kDirection - 1] = row % 2 ? "借" : "贷";
        texts[column::kAccountNumber - 1] = "1002.01";
        texts[column::kAccountName - 1] = "银行存款-工行";
        texts[column::kAmount - 1] = std::to_string(row * 100) + ".25";
        grid->FillRow(row, texts);
    }
    vicenter::ui::GridModel model(grid, actions);
    vicenter::ui::GridView view(model, actions, actions);
    for (const int hidden : {column::kAccountId, column::kSettleId, column::kCurrencyId, column::kUnitId}) {
        grid->SetColumnHidden(hidden, true);
    }
    view.resize(1180, 700);
    view.show();
    QApplication::processEvents();
    Result result;
    result.fill = Milliseconds(started);

    std::vector<double> times;
    QScrollBar* bar = view.verticalScrollBar();
    for (int step = 0; step <= kSteps; ++step) {
        // A third of the steps line by line, the others in leaps through the whole grid.
        const int value = step % 3 == 1
                              ? bar->value() + 1
                              : static_cast<int>(static_cast<long long>(bar->maximum()) * step / kSteps);
        started = std::chrono::steady_clock::now();
        bar->setValue(value);
        view.viewport()->repaint();
        view.verticalHeader()->viewport()->repaint();
        times.push_back(Milliseconds(started));
    }
    if (bar->value() != bar->maximum()) {
        throw std::runtime_error("the grid stands at " + std::to_string(bar->value()) + " of " +
                                 std::to_string(bar->maximum()));
    }
    std::sort(times.begin(), times.end());
    result.median = times[times.size() / 2];
    result.worst = times.back();
    result.pauses = static_cast<int>(
        std::count_if(times.begin(), times.end(), [](double t) { return t > kPauseMilliseconds; }));
    return result;
}

void Print(const char* what, const Result& result) {
    std::printf("  %-14s  shown in %7.1f ms   step median %6.2f ms, worst %6.2f ms, pauses %d\n", what,
                result.fill, result.median, result.worst, result.pauses);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        QApplication application(argc, argv);
        vicenter::ui::SetUpApplication(application);
        Scroll(kFewLines);  // fonts and glyphs
        const Result few = Scroll(kFewLines);
        const Result many = Scroll(kManyLines);
        std::printf("scrolling the entry grid, %d steps each, scrolled and painted\n", kSteps + 1);
        Print("100 lines", few);
        Print("100,000 lines", many);
        std::printf("  ratio of medians %.2f\n", many.median / few.median);
        return many.pauses == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
