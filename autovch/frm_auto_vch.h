#pragma once

// frmAutoVch: the rules of the dialog "根据凭证生成凭证模板".
//
// One object per use; the view outlives it. After the dialog has closed the caller reads Result(). Boxes are
// numbered as the dialog's control array: 0 year, 1 period, 2 first and 3 last voucher number. User-interface
// thread.

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "autovch/generation.h"
#include "autovch/generation_preview.h"
#include "dialogs/frm_set_colume.h"
#include "platform/scripting/dictionary.h"

namespace vicenter::autovch {

enum Box : std::size_t { kYear = 0, kPeriod = 1, kFirstNumber = 2, kLastNumber = 3 };
inline constexpr std::size_t kBoxCount = 4;
inline constexpr const char* kAutoVchCaption = "根据凭证生成凭证模板";
inline constexpr const char* kAllGroups = "全部";

struct BoxBounds {
    std::int64_t lower = 1;
    std::int64_t upper = 1;
};

struct AutoVchState {
    std::array<std::string, kBoxCount> boxes;
    std::array<std::size_t, kBoxCount> maxLengths{4, 2, 9, 9};  // characters
    std::vector<std::string> groups;                            // the first is kAllGroups
    std::size_t group = 0;
    bool includeSystem = false;  // chkJZVch
    std::string templateName;    // txtVchTpName
    std::string selected;        // what the filter selects, in words
    // A line each: that lines of vouchers are left out, that vouchers of several groups would be merged.
    std::string warning;
    std::string oneGroup;  // the group offered instead of all
};

class AutoVchView {
  public:
    virtual ~AutoVchView() = default;
    virtual void Show(const AutoVchState& state) = 0;
    // Rows done of rows in all while a long generation runs; false when the user wants to cancel.
    virtual bool ShowProgress(std::int64_t done, std::int64_t all) = 0;
    virtual void HideProgress() = 0;
    // Modal; returns when the column dialog is closed.
    virtual void ShowColumnDialog(dialogs::frmSetColume& dialog) = 0;
    // Modal: the patterns with a tick each; true when the user keeps what is ticked then.
    virtual bool ShowPatterns(const GenerationPreview& preview, LeftOut& without) = 0;
    virtual void Unload() = 0;
};

class frmAutoVch {
  public:
    explicit frmAutoVch(AutoVchView& view) : view_(view) {}
    frmAutoVch(const frmAutoVch&) = delete;
    frmAutoVch& operator=(const frmAutoVch&) = delete;

    void Load();
    const AutoVchState& State() const { return state_; }
    const BoxBounds& Bounds(Box box) const { return bounds_[box]; }

    // Number boxes take digits and backspace; every other key is dropped.
    static bool AcceptsCharacter(char32_t character);
    // The user's text of a box. A text with other characters, or too long, is refused.
    bool SetBox(Box box, const std::string& text);
    // A click on a box's up-down control.
    void Spin(Box box, bool up);
    void SelectGroup(std::size_t index);
    void SetIncludeSystem(bool include);
    void SetTemplateName(const std::string& name);
    // The filter has not changed for a moment: counts what it selects.
    void FilterSettled();
    void ChooseColumns();  // cmdCols
    // Shows the patterns of what the filter selects; those not wanted are left out until it changes.
    void ChoosePatterns();
    // The group that is offered in the place of all.
    void TakeOneGroup();
    // 2 closes; any other index generates.
    void Command(int index);

    const GenerationResult& Result() const { return result_; }
    // Column number as text to 0 or 1.
    const scripting::DictionaryRef& OptionalFields() const { return optionalFields_; }

  private:
    VoucherFilter Filter() const;
    void RefreshNumbers();
    void Changed(Box box);
    void Describe();

    AutoVchView& view_;
    AutoVchState state_;
    std::array<BoxBounds, kBoxCount> bounds_;
    scripting::DictionaryRef optionalFields_;
    bool ownRange_ = false;  // the user has set a range of their own
    LeftOut without_;
    GenerationResult result_;
};

}  // namespace vicenter::autovch
