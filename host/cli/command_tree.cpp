// vicenter new, rename NAME NEW, delete NAME: the tree's commands, by the window's own rules.

#include <algorithm>
#include <string>

#include "automation/quietly.h"
#include "center/frame/frm_vi_center.h"
#include "center/frame/rights.h"
#include "center/frame/window_state.h"
#include "host/cli/context.h"
#include "host/cli/templates.h"
#include "store/cls_vi_data.h"

namespace vicenter::host {

namespace {

// A window that nobody sees: it loads, takes the same events and is closed again.
class HiddenWindow {
  public:
    HiddenWindow() : presenter_(view_, nullptr) { presenter_.Load(); }
    HiddenWindow(const HiddenWindow&) = delete;
    HiddenWindow& operator=(const HiddenWindow&) = delete;
    ~HiddenWindow() {
        // Whoever waited in vain for others to end would do so once more.
        if (store::clsVIData::LastFailureWasLock()) return;
        automation::Quietly([this] { presenter_.Unload(); });
    }

    center::frmVICenter& Presenter() { return presenter_; }
    const ConsoleView& View() const { return view_; }

    // Rights that could not be asked for are no missing ones: told, and nothing is done.
    bool TellsRightsFailure() const {
        const std::string& failure = presenter_.RightsFailure();
        if (!failure.empty()) center::Tell(failure);
        return !failure.empty();
    }
    bool HasNode(const std::string& key) const {
        const auto& nodes = presenter_.Nodes();
        return std::any_of(nodes.begin(), nodes.end(),
                           [&](const center::TreeNode& node) { return node.key == key; });
    }

  private:
    ConsoleView view_;
    center::frmVICenter presenter_;
};

std::string KeyOf(const std::string& id) {
    return std::string(center::kTemplateKeyHead) + id;
}

// The window gives a user without the right no label to edit and says nothing; a terminal has to.
void SayNoRight() {
    center::Tell(center::kNoRight);
}

// The window's tree commands are silent about some failures, and say no more than whether there was something
// to show: a terminal is told the reason when nothing else was.
int Finish(const CliContext& context, bool ok, const Variant& data, const std::string& text = {}) {
    const std::string& failure = store::clsVIData::LastFailure();
    if (!ok && context.messages.Shown().empty() && !failure.empty())
        TellFailure(context, "命令未能完成：" + failure);
    return FinishSpeaking(context, ok, data, text);
}

}  // namespace

int RunNew(const CliContext& context) {
    ReadTemplates(context);
    Variant data = Variant::Null();
    bool ok = false;
    std::string text;
    {
        HiddenWindow window;
        if (window.TellsRightsFailure()) return Finish(context, false, data);
        const std::string before = window.Presenter().SelectedNode();
        window.Presenter().ToolClick("mnuNew");
        const std::string key = window.Presenter().SelectedNode();
        ok = window.Presenter().HasRight() && key != before;
        if (ok) {
            const std::string id = key.substr(center::kTemplateKeyHead.size());
            const std::string name = window.Presenter().TemplateName();
            data = JsonObject({{"FID", Variant(id).ToInt32()}, {"FName", name}});
            text = id + "\t" + name + "\n";
        }
    }
    return Finish(context, ok, data, text);
}

int RunRename(const CliContext& context) {
    const TemplateHead head = FindTemplate(context, context.options.name);
    Variant data = Variant::Null();
    bool ok = false;
    {
        HiddenWindow window;
        if (window.TellsRightsFailure()) return Finish(context, false, data);
        center::frmVICenter& presenter = window.Presenter();
        presenter.Tree().NodeClick(KeyOf(head.id));
        presenter.Tree().DoubleClick();
        if (!presenter.HasRight()) {
            SayNoRight();
        } else if (!window.View().IsEditingLabel() || !presenter.Tree().BeforeLabelEdit()) {
            center::Tell("标准模板不允许修改名称！");
        } else {
            ok = presenter.Tree().AfterLabelEdit(context.options.newName);
        }
        if (ok) data = JsonObject({{"FID", Variant(head.id).ToInt32()}, {"FName", presenter.TemplateName()}});
    }
    return Finish(context, ok, data);
}

int RunDelete(const CliContext& context) {
    const TemplateHead head = FindTemplate(context, context.options.name);
    bool ok = false;
    {
        HiddenWindow window;
        if (window.TellsRightsFailure()) return Finish(context, false, Variant::Null());
        // A tree that could not be read has no node that could have gone.
        const bool listed = window.HasNode(KeyOf(head.id));
        window.Presenter().Tree().NodeClick(KeyOf(head.id));
        window.Presenter().ToolClick("mnuDel");
        ok = listed && !window.HasNode(KeyOf(head.id));
        // The standard template is protected without a word in the window.
        if (!ok && window.Presenter().HasRight() && head.id == "0") center::Tell("标准模板不允许删除！");
    }
    return Finish(
        context, ok,
        ok ? JsonObject({{"FID", Variant(head.id).ToInt32()}, {"FName", head.name}}) : Variant::Null());
}

}  // namespace vicenter::host
