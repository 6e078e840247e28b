#include "center/tree/template_tree.h"

#include <algorithm>

#include "entry/host_services.h"
#include "entry/single_line.h"
#include "platform/system/collation.h"
#include "store/cls_vi_data.h"
#include "store/command_unit.h"
#include "store/failure_text.h"
#include "store/template_guard.h"
#include "store/template_history.h"
#include "store/template_name.h"
#include "store/template_rows.h"

namespace vicenter::center {

using entry::LogKind;

namespace {

constexpr int kRootIcon = 7;
constexpr int kTemplateIcon = 2;
constexpr const char* kRootText = "凭证模板";
constexpr const char* kStandardKey = "detail-0";
constexpr const char* kNotCreated = "新增模板失败！";

bool IsTemplateKey(const std::string& key) {
    return key.find(kTemplateKeyHead) != std::string::npos;
}

std::string IdOf(const std::string& key) {
    std::string id = key;
    if (const std::size_t at = id.find(kTemplateKeyHead); at != std::string::npos) {
        id.erase(at, kTemplateKeyHead.size());
    }
    return id;
}

std::string KeyOf(const std::string& id) {
    return std::string(kTemplateKeyHead) + id;
}

// Why a template cannot be renamed so; none for a name that it may have.
const char* NameFaultText(const std::string& name) {
    switch (store::FaultOfName(name)) {
        case store::NameFault::Blank:
            return "名称不允许为空，修改失败！";
        case store::NameFault::ControlCharacter:
            return "名称不能包含制表符、换行等控制字符，修改失败！";
        case store::NameFault::TooLong:
            return "名称长度不能超过255个字符，修改失败！";
        case store::NameFault::None:
            break;
    }
    return nullptr;
}

bool RenameKeepingVersion(const SeenTemplate& seen, const std::string& name) {
    store::KeptVersions before({seen}, store::HistoryCommand::Rename);
    if (!before.MayWrite()) {
        Tell(before.WhyNot("名称没有修改"));
        return false;
    }
    return store::RenameTemplate(seen.id, name) && before.CommitOrShow();
}

bool DeleteKeepingVersion(const SeenTemplate& seen) {
    store::KeptVersions before({seen}, store::HistoryCommand::Delete);
    if (!before.MayWrite()) {
        Tell(before.WhyNot("没有删除"));
        return false;
    }
    return store::clsVIData().DeleteVchTemplateInfo(seen.id) && before.Commit();
}

}  // namespace

TemplateTree::TemplateTree(WindowState& state, std::function<bool()> confirm, std::function<void()> leaving,
                           std::function<void()> opened)
    : state_(state), confirm_(std::move(confirm)), leaving_(std::move(leaving)), opened_(std::move(opened)) {}

std::string TemplateTree::KeyOfTemplate(const std::string& id, const std::string& name) const {
    const TreeNode* node = Find(KeyOf(id));
    if (node == nullptr) return {};
    return store::IsStandard(id) || node->text == name ? node->key : std::string();
}

const TreeNode* TemplateTree::Find(const std::string& key) const {
    const auto found =
        std::find_if(nodes_.begin(), nodes_.end(), [&](const TreeNode& node) { return node.key == key; });
    return found == nodes_.end() ? nullptr : &*found;
}

std::string TemplateTree::TextOf(const std::string& key) const {
    const TreeNode* node = Find(key);
    return node == nullptr ? std::string() : node->text;
}

void TemplateTree::Select(const std::string& key) {
    if (Find(key) == nullptr) return;
    selected_ = key;
    state_.view.SelectTreeNode(key);
}

std::optional<std::vector<TreeNode>> TemplateTree::AskNodes() const {
    store::clsVIData data;
    const ado::RecordsetRef templates = data.GetVchTemplateByUserID(state_.userId);
    if (templates == nullptr) return std::nullopt;
    std::vector<TreeNode> nodes{{std::string(kRootKey), kRootText, kRootIcon}};
    for (; !templates->AtEnd(); templates->MoveNext()) {
        nodes.push_back({KeyOf(templates->Value("FID").ToText()), templates->Value("FName").ToTextOrEmpty(),
                         kTemplateIcon});
    }
    return nodes;
}

void TemplateTree::ShowNodes(std::vector<TreeNode> nodes) {
    nodes_ = std::move(nodes);
    selected_ = kRootKey;
    state_.view.SetTree(nodes_);
}

bool TemplateTree::ReadNodes() {
    store::clsVIData::ForgetFailure();
    if (auto nodes = AskNodes()) {
        ShowNodes(std::move(*nodes));
        return true;
    }
    Tell(store::WithReason("凭证模板无法读取，模板树保持原样，请稍后再试！"));
    return false;
}

void TemplateTree::Build() {
    ShowNodes(AskNodes().value_or(std::vector<TreeNode>{{std::string(kRootKey), kRootText, kRootIcon}}));
    Select(kStandardKey);
}

void TemplateTree::RebuildAndSelect(std::int32_t id) {
    if (!ReadNodes()) return;
    Select(id < 1 ? nodes_.back().key : KeyOf(std::to_string(id)));
    OpenSelected();
}

bool TemplateTree::ShowStored(std::int32_t id) {
    if (!ReadNodes()) return false;
    Select(KeyOf(std::to_string(id)));
    OpenSelected();
    return true;
}

// Whatever was lit before, a template that is open can be saved and exported.
void TemplateTree::OpenSelected() {
    Open({}, {}, {});
    if (state_.open.IsOpen()) state_.Enable({Tool::Save, Tool::Exp}, true);
}

void TemplateTree::ReadAgain(const std::string& id) {
    if (!ReadNodes()) {
        Select(KeyOf(state_.open.Id()));
        return;
    }
    const std::string key = KeyOf(id);
    Select(Find(key) == nullptr ? kStandardKey : key);
    OpenSelected();
}

bool TemplateTree::ShowAgain(const std::string& id) {
    auto nodes = AskNodes();
    const auto isIt = [key = KeyOf(id)](const TreeNode& node) { return node.key == key; };
    if (!nodes || std::none_of(nodes->begin(), nodes->end(), isIt)) return false;
    ShowNodes(std::move(*nodes));
    Select(KeyOf(id));
    Read({}, {}, {});
    state_.Enable({Tool::Save, Tool::Exp}, true);
    return true;
}

void TemplateTree::Open(const std::string& name, const std::string& id, const std::string& displayName) {
    store::clsVIData::ForgetFailure();
    Read(name, id, displayName);
    if (!state_.open.LinesKnown()) TellUnreadable();
}

void TemplateTree::OpenAtLoad() {
    Read(store::kStandardTemplateName, IdOf(kStandardKey), {});
}

void TemplateTree::TellUnreadable() const {
    Tell(store::WithReason("模板 " + state_.open.Name() +
                           " 的分录未能读取，请检查账套连接后重新打开该模板！"));
}

bool TemplateTree::Reload() {
    const std::string name = state_.open.Name();
    const std::string id = state_.open.Id();
    Read(name, id, {});
    return state_.open.LinesKnown();
}

void TemplateTree::Read(const std::string& name, const std::string& id, const std::string& displayName) {
    leaving_();
    std::string opened = id;
    std::string shown = name;
    if (opened.empty() && IsTemplateKey(selected_)) {
        opened = IdOf(selected_);
        shown = TextOf(selected_);
    }
    if (opened.empty()) {
        state_.open.Close();
        state_.view.SetTemplateName({});
    } else {
        if (!displayName.empty()) shown = displayName;
        state_.open.Open(opened, shown);
        state_.view.SetTemplateName(shown);
        state_.open.Count(store::clsVIData().GetVchEntryCount(opened));
        state_.open.ReadLines();
    }
    opened_();
}

// --- events

void TemplateTree::GotFocus() {
    state_.Enable({Tool::New, Tool::Del}, true);
}

void TemplateTree::LostFocus() {
    state_.Enable({Tool::New, Tool::Del}, false);
}

void TemplateTree::NodeClick(const std::string& key) {
    if (Find(key) == nullptr) return;
    Select(key);
    if (!PassGate()) return;
    if (key == kRootKey) {
        state_.Enable({Tool::Del, Tool::Save, Tool::Exp}, false);
    } else if (IsTemplateKey(key)) {
        state_.Enable({Tool::Del, Tool::Save, Tool::Exp}, true);
        OpenNode(key);
    }
    state_.Enable({Tool::AddRow, Tool::DelRow}, false);
}

bool TemplateTree::PassGate() {
    const std::string key = selected_;
    const std::string name = TextOf(key);
    if (!confirm_()) return false;
    if (selected_ == key) return true;
    if (Find(key) == nullptr) {
        TellGone(name);
        return false;
    }
    Select(key);
    if (IsTemplateKey(key)) OpenNode(key);
    return selected_ == key;
}

void TemplateTree::OpenNode(const std::string& key) {
    const std::string text = TextOf(key);
    const FoundTemplate found = FateOfNode(IdOf(key), text, state_.userId);
    if (found.fate == TemplateFate::Gone) {
        TellGone(text);
        ReadAgain(IdOf(key));
        return;
    }
    if (found.fate == TemplateFate::Changed) SetNodeText(key, found.now.name);
    Open(TextOf(key), IdOf(key), {});
}

void TemplateTree::SetNodeText(const std::string& key, const std::string& text) {
    for (TreeNode& node : nodes_) {
        if (node.key == key) node.text = text;
    }
    state_.view.SetTreeNodeText(key, text);
}

void TemplateTree::DoubleClick() {
    if (state_.hasRight && PassGate()) StartRenaming();
}

void TemplateTree::StartRenaming() {
    editsLabels_ = true;
    state_.view.StartLabelEdit();
}

bool TemplateTree::BeforeLabelEdit() {
    const bool begins = selected_ != kRootKey && selected_ != kStandardKey;
    if (!begins) LabelEditGivenUp();
    return begins;
}

void TemplateTree::LabelEditGivenUp() {
    editsLabels_ = false;
    unnamed_.clear();
}

bool TemplateTree::AfterLabelEdit(const std::string& label) {
    editsLabels_ = false;
    const std::string newText(entry::WithoutLineEnd(label));
    if (const char* fault = NameFaultText(newText); fault != nullptr) {
        Tell(fault);
        return false;
    }
    constexpr const char* kDuplicate = "模板名称不允许重复，修改失败！";
    if (system::Collator::Chinese().Compare(newText, store::kStandardTemplateName) == 0) {
        Tell(kDuplicate);
        return false;
    }
    if (!IsTemplateKey(selected_)) return false;
    const std::optional<bool> taken = store::UserHasTemplate(newText, state_.userId);
    if (!taken) return false;
    if (*taken) {
        Tell(kDuplicate);
        return false;
    }
    const std::string id = IdOf(selected_);
    const std::optional<SeenTemplate> seen = SeenForRenaming(TextOf(selected_), id);
    if (!seen || !RenameKeepingVersion(*seen, newText)) return false;
    SetNodeText(selected_, newText);
    Open(newText, id, newText);
    if (std::exchange(unnamed_, {}) == selected_) {
        // What comes next are its lines.
        state_.grid->SetActiveCell({1, column::kNo});
        state_.view.FocusGrid();
    }
    return true;
}

std::optional<SeenTemplate> TemplateTree::SeenForRenaming(const std::string& text, const std::string& id) {
    const FoundTemplate found = FateOfNode(id, text, state_.userId);
    switch (found.fate) {
        case TemplateFate::AsSeen:
            return found.now;
        case TemplateFate::Gone:
            TellGone(text);
            return std::nullopt;
        case TemplateFate::Unknown:
            Tell("模板 " + text + " 无法读取，修改失败！");
            return std::nullopt;
        case TemplateFate::Changed:
            break;
    }
    if (Ask("模板 " + text + " 已在别处改名为 " + found.now.name + "，是否仍要修改名称？",
            system::MessageButtons::YesNo) == system::MessageResult::Yes) {
        return found.now;
    }
    return std::nullopt;
}

// --- new and delete

std::optional<TreeNode> TemplateTree::InsertTemplate() {
    std::optional<TreeNode> node;
    bool undone = true;
    store::clsVIData::ForgetFailure();
    {
        store::CommandUnit unit;
        std::int32_t largest = 0;
        std::int32_t number = 0;
        // Whoever waited in vain for others to end would do so a second time.
        if (unit.HasBegun() || !store::clsVIData::LastFailureWasLock())
            number = store::clsVIData().InsertVchTemplateInfo(largest);
        const std::string id = std::to_string(number);
        const std::string name = store::CustomTemplateName(std::int64_t{largest} + 1);
        undone = number <= 0 || unit.IsOne();
        if (number > 0 && store::ConfirmNewTemplate(id, state_.userId, name) && unit.Commit())
            node = TreeNode{KeyOf(id), name, kTemplateIcon};
    }
    if (node) {
        nodes_.push_back(*node);
        state_.view.AddTreeNode(*node);
        Select(node->key);
        return node;
    }
    if (undone) {
        // The account set keeps silent, and the user would take the command for done.
        Tell(store::WithReason(kNotCreated));
        return std::nullopt;
    }
    Tell("新增的模板未能确认（其他用户可能同时新增了模板），请在重新读取的模板树中选择！");
    const std::string before = selected_;
    ReadNodes();
    Select(before);
    return std::nullopt;
}

bool TemplateTree::CreateTemplate() {
    const std::optional<TreeNode> node = InsertTemplate();
    if (!node) return false;
    // The command has been through the right and the gate already: no second question.
    unnamed_ = node->key;
    StartRenaming();
    Open(node->text, IdOf(node->key), {});
    state_.Enable({Tool::Del, Tool::Save}, true);
    return true;
}

// Asked once the user has agreed: what is deleted is what the user means.
std::optional<SeenTemplate> TemplateTree::SeenForDeletion(const std::string& text) {
    const std::string id = IdOf(selected_);
    const bool open = state_.open.Id() == id && state_.open.LinesKnown();
    const SeenTemplate shown =
        open ? SeenOpen(state_.open, state_.userId) : store::SeenAs(id, state_.userId, text);
    const FoundTemplate found =
        open ? store::LookAgain(shown) : store::Compare(shown, store::AskTemplate(id));
    switch (found.fate) {
        case TemplateFate::AsSeen:
            return found.now;
        case TemplateFate::Unknown:
            Tell("删除失败！");
            break;
        case TemplateFate::Gone:
            TellGone(text);
            break;
        case TemplateFate::Changed:
            // An id is given again: what stands there now may be another template of the user's.
            if (Ask("模板 " + text +
                        (found.HasOtherName(shown)
                             ? " 已在别处被删除或改名，原处现在是模板 " + found.now.name + "，是否删除它？"
                             : " 打开之后已在别处被修改，是否仍要删除？") +
                        "\r\n\r\n选择“否”将显示修改后的模板。",
                    system::MessageButtons::YesNo) == system::MessageResult::Yes) {
                return found.now;
            }
            break;
    }
    entry::WriteOperationLog(LogKind::Failed, "凭证模板-删除模板 " + text + " 失败");
    if (found.fate != TemplateFate::Unknown) ReadAgain(id);
    return std::nullopt;
}

void TemplateTree::DeleteSelected() {
    if (selected_ == kRootKey) {
        Tell("不允许删除！");
        return;
    }
    if (selected_ == kStandardKey || !IsTemplateKey(selected_)) return;
    const std::string text = TextOf(selected_);
    if (Ask("模板删除将无法还原，是否删除？\r\n\r\n凭证模板：" + text, system::MessageButtons::YesNo) !=
        system::MessageResult::Yes) {
        return;
    }
    const std::optional<SeenTemplate> seen = SeenForDeletion(text);
    if (!seen) return;
    if (!DeleteKeepingVersion(*seen)) {
        Tell("删除失败！");
        entry::WriteOperationLog(LogKind::Failed, "凭证模板-删除模板 " + text + " 失败");
        return;
    }
    const std::string removed = selected_;
    const auto at = static_cast<std::size_t>(Find(removed) - nodes_.data());
    // The root at index 0 is no sibling.
    std::string neighbour;
    if (at + 1 < nodes_.size()) {
        neighbour = nodes_[at + 1].key;
    } else if (at > 1) {
        neighbour = nodes_[at - 1].key;
    }
    nodes_.erase(nodes_.begin() + static_cast<std::ptrdiff_t>(at));
    selected_ = kRootKey;
    // Whatever was not saved has been given up before the question: nothing to save into what is gone.
    state_.open.Settle();
    state_.view.RemoveTreeNode(removed);
    entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-删除模板 " + text + " 成功");
    if (neighbour.empty()) {
        Open({}, {}, {});
    } else {
        NodeClick(neighbour);
    }
}

}  // namespace vicenter::center
